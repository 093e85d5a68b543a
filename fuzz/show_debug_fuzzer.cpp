// ShowDebug on arbitrary texts, against a display kept as the window keeps it.
//
// Input: one byte of settings (bit 0: characters are UTF-16 pairs, else Latin-1 bytes), then
// calls, each as one header byte and its characters:
//   bits 0-5 the number of characters, bit 6 through logLine (else ShowDebug), bit 7 the
//   display is cleared first
#include "fuzz/fuzz_support.h"
#include "records/traffic_log.h"

using namespace larkspur;
using namespace larkspur::fuzz;

namespace {

// Inserts at the end; a replacing insert takes the place of the last character.
class TextDisplay : public TrafficDisplay {
public:
    QString text;
    void insertAtEnd(const QString& t, bool replaceLast) override {
        if (replaceLast) {
            FUZZ_CHECK(!text.isEmpty(), "a replacing insert has a character to replace");
            text.chop(1);
        }
        text += t;
    }
    void clear() override { text.clear(); }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input in(data, size);
    const bool wide = in.byte() & 1;

    TrafficLog log;
    TextDisplay display;
    log.setDisplay(&display);
    QString allLogged;
    while (!in.atEnd()) {
        const uint8_t header = in.byte();
        const size_t count = header & 0x3F;
        const QString text =
            wide ? utf16Pairs(in.bytes(2 * count)) : QString::fromLatin1(in.bytes(count));
        if (header & 0x80)
            log.clearDisplay();

        const qsizetype entries = log.viewerList().size();
        QString cleaned = text;
        if (header & 0x40) {
            log.logLine(text);
            cleaned = log.logText().mid(allLogged.size());
        } else {
            log.ShowDebug(cleaned);
        }
        allLogged += cleaned;

        FUZZ_CHECK(isLogText(cleaned), "the cleaned text holds only 32..122 and CR LF pairs");
        FUZZ_CHECK(cleaned.size() <= 2 * (text.size() + 2), "cleaning at most doubles a text");
        FUZZ_CHECK(log.logText() == allLogged, "the log text is every cleaned text in order");
        FUZZ_CHECK(log.logCaret() == display.text.size(),
                   "logCaret is the length of the visible log");
        FUZZ_CHECK(log.viewerList().size() == entries + 1, "one viewer entry per call");
        FUZZ_CHECK(log.viewerList().entry(entries) ==
                       QStringView(cleaned).chopped(qMin<qsizetype>(2, cleaned.size())),
                   "a viewer entry is the cleaned text minus its last two characters");
    }
    return 0;
}
