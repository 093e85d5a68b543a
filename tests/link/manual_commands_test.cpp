#include "common/link_fixture.h"
#include "link/manual_commands.h"

#include <optional>

using namespace larkspur;
using namespace larkspur::test;

namespace {

class ManualCommands : public LinkFixture {};

TEST_F(ManualCommands, EachSendsOneThingAndTheGuardedOnesWaitTheirTurn) {
    struct Case {
        const char* name;
        void (*command)(Link&);
        bool guarded;
        const char* logged;
        QByteArray sent;
    } cases[] = {
        {"ack", &cmd_ack, false, "Sending -->    ACK", ACK},
        {"nak", &cmd_nak, true, "Sending -->    NAK", NAK},
        {"enq", &cmd_enquiry_basic, false, "Sending -->    ENQ", ENQ},
        {"ayt", &cmd_ayt, true, "Sending -->    AREYUTHERE", frame("AREYUTHERE")},
        {"grs", &cmd_grs, true, "Sending -->    GRS", frame("GRS       ")},
        {"end", &cmd_end, true, "Sending -->    END", frame("END       ")},
    };
    tcpPbx.options.onEnq = sim::Answer::Silent;
    tcpPbx.options.onFrame = sim::Answer::Silent;
    for (auto& c : cases) {
        for (bool waiting : {false, true}) {
            log = TrafficLog();
            tcp.written.clear();
            std::optional<Link::WaitGuard> busy;
            if (waiting)
                busy.emplace(link);
            c.command(link);
            const bool acts = !(waiting && c.guarded);
            EXPECT_EQ(lines(), acts ? QStringList{c.logged} : QStringList{}) << c.name << waiting;
            EXPECT_EQ(tcp.written, acts ? QList<QByteArray>{c.sent} : QList<QByteArray>{})
                << c.name << waiting;
        }
    }
}

} // namespace
