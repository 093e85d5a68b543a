#pragma once

#include <QSocketNotifier>

#include <functional>
#include <memory>

namespace larkspur {

// Watches one descriptor for reading and for writing. Writing is watched only while there is
// something to write, so an idle descriptor never wakes the event loop.
class DescriptorWatch {
public:
    void watch(int fd, QObject* context, const std::function<void()>& onReadable,
               const std::function<void()>& onWritable);
    void stop();
    bool watching() const { return m_readable != nullptr; }
    void setReading(bool on) { m_readable->setEnabled(on); }
    void setWriting(bool on) { m_writable->setEnabled(on); }

private:
    std::unique_ptr<QSocketNotifier> m_readable;
    std::unique_ptr<QSocketNotifier> m_writable;
};

} // namespace larkspur
