// build_vmail_message on arbitrary codes and fields.
//
// Input: one byte of settings, then the code, field 1 and field 2, each as one length byte and
// its characters:
//   bits 0-1 the protocol (HYATT, HIS, empty, lower-case hyatt), bit 2 characters are UTF-16
//   pairs (else Latin-1 bytes), bit 3 the code is taken from the known ones by its first
//   character (else as given)
#include "fuzz/fuzz_support.h"
#include "protocol/frame.h"
#include "protocol/vmail_frame.h"

using namespace larkspur;
using namespace larkspur::fuzz;

namespace {

const QString knownCodes[] = {"1", "2", "3", "6", "7", "8", "9", "A", "B", "D"};

// Field widths after the code, as the PBX reads the body.
int widthsAfterCode(const QString& code) {
    if (code == u"1")
        return 0;
    if (code == u"2" || code == u"3" || code == u"6")
        return 6;
    if (code == u"8" || code == u"9")
        return 8;
    return 12;
}

bool known(const QString& code) {
    for (const QString& k : knownCodes)
        if (code == k)
            return true;
    return false;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input in(data, size);
    const uint8_t settings = in.byte();
    static const QString protocols[] = {"HYATT", "HIS", "", "hyatt"};
    const QString& protocol = protocols[settings & 3];
    const bool wide = settings & 4;
    const auto text = [&] {
        const uint8_t n = in.byte();
        return wide ? utf16Pairs(in.bytes(2 * size_t(n))) : QString::fromLatin1(in.bytes(n));
    };
    QString code = text();
    const QString field1 = text();
    const QString field2 = text();
    if (settings & 8)
        code = knownCodes[code.isEmpty() ? 0 : code.at(0).unicode() % std::size(knownCodes)];

    bool recognized = false;
    const QString frame = build_vmail_message(
        code, field1, field2, protocol == u"HYATT" ? Protocol::Hyatt : Protocol::His, recognized);

    FUZZ_CHECK(frame.size() >= 3, "a frame has STX, ETX and the check character");
    FUZZ_CHECK(frame.front() == QChar(ctl::STX), "a frame starts with STX");
    FUZZ_CHECK(frame.at(frame.size() - 2) == QChar(ctl::ETX), "ETX stands before the check");
    const QString body = frame.mid(1, frame.size() - 3);
    quint8 bcc = ctl::ETX;
    for (QChar c : body)
        bcc ^= quint8(c.unicode() & 0xFF);
    FUZZ_CHECK(frame.back() == QChar(char16_t(bcc)), "the check is the XOR of body and ETX");
    FUZZ_CHECK(body.startsWith(code), "the body starts with the code");
    if (protocol == u"HYATT")
        FUZZ_CHECK(body.size() >= 13, "a HYATT body is at least 13 long");

    if (known(code)) {
        FUZZ_CHECK(recognized, "a known code is recognized");
        FUZZ_CHECK(body.size() >= code.size() + widthsAfterCode(code),
                   "every field of a known code is at least its width");
        if (code != u"1")
            FUZZ_CHECK(body.mid(code.size()).startsWith(trimBlanks(field1)),
                       "field 1 follows the code, trimmed of blanks");
        if (code == u"1" && protocol != u"HYATT")
            FUZZ_CHECK(body == code, "code 1 carries no field");
    } else {
        FUZZ_CHECK(!recognized, "an unknown code is flagged");
        FUZZ_CHECK(body == (protocol == u"HYATT" ? code.leftJustified(13) : code),
                   "an unknown code is framed as it is");
    }
    return 0;
}
