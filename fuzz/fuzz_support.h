#pragma once

#include "core/operator_interface.h"

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace larkspur::fuzz {

// A broken invariant is a crash for libFuzzer: it keeps the input and stops.
#define FUZZ_CHECK(condition, what)                                                                \
    do {                                                                                           \
        if (!(condition)) {                                                                        \
            std::fprintf(stderr, "invariant broken at %s:%d: %s\n", __FILE__, __LINE__, what);     \
            std::abort();                                                                          \
        }                                                                                          \
    } while (0)

// With LARKSPUR_FUZZ_TRACE set, a target prints what it did, to look into one input by hand.
inline void trace(const QString& what) {
    static const bool on = qEnvironmentVariableIsSet("LARKSPUR_FUZZ_TRACE");
    if (on)
        std::fprintf(stderr, "%s\n", qPrintable(what));
}

// Reads the fuzzer's bytes front to back; past the end every read is empty or zero.
class Input {
public:
    Input(const uint8_t* data, size_t size) : m_data(data), m_size(size) {}

    bool atEnd() const { return m_pos >= m_size; }
    uint8_t byte() { return atEnd() ? 0 : m_data[m_pos++]; }
    QByteArray bytes(size_t count) {
        const size_t n = count < m_size - m_pos ? count : m_size - m_pos;
        QByteArray out(reinterpret_cast<const char*>(m_data + m_pos), qsizetype(n));
        m_pos += n;
        return out;
    }
    QByteArray rest() { return bytes(m_size - m_pos); }

private:
    const uint8_t* m_data;
    size_t m_size;
    size_t m_pos = 0;
};

// Bytes as 16-bit characters, low byte first (an odd last byte is dropped).
inline QString utf16Pairs(const QByteArray& bytes) {
    QString text;
    for (qsizetype i = 0; i + 1 < bytes.size(); i += 2)
        text.append(QChar(char16_t(uint8_t(bytes[i]) | (uint8_t(bytes[i + 1]) << 8))));
    return text;
}

// The log's alphabet: 32..122, and CR only ever right before LF (and LF only right after CR).
inline bool isLogText(const QString& text) {
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t c = text.at(i).unicode();
        if (c >= 32 && c <= 122)
            continue;
        if (c == u'\r' && i + 1 < text.size() && text.at(i + 1) == u'\n')
            continue;
        if (c == u'\n' && i > 0 && text.at(i - 1) == u'\r')
            continue;
        return false;
    }
    return true;
}

// Notices are counted, never shown; file choices are cancelled.
class CountingOperator : public OperatorInterface {
public:
    int notices = 0;
    QString lastNotice;
    void notify(const QString& text) override {
        ++notices;
        lastNotice = text;
    }
    QString chooseFileToOpen(const QString&) override { return QString(); }
    QString chooseFileToSave(const QString&) override { return QString(); }
};

} // namespace larkspur::fuzz
