#include "core/descriptor_watch.h"

namespace larkspur {

void DescriptorWatch::watch(int fd, QObject* context, const std::function<void()>& onReadable,
                            const std::function<void()>& onWritable) {
    m_readable = std::make_unique<QSocketNotifier>(fd, QSocketNotifier::Read);
    QObject::connect(m_readable.get(), &QSocketNotifier::activated, context, onReadable);
    m_writable = std::make_unique<QSocketNotifier>(fd, QSocketNotifier::Write);
    m_writable->setEnabled(false);
    QObject::connect(m_writable.get(), &QSocketNotifier::activated, context, onWritable);
}

void DescriptorWatch::stop() {
    m_readable.reset();
    m_writable.reset();
}

} // namespace larkspur
