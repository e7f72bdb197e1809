// Steering: what the commands mean, and the socket that they come through.
#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include "ModemBench.h"
#include "SteeredDevice.h"
#include "TestScenarios.h"
#include "library/Control.h"

namespace {

using namespace std::chrono_literals;

const std::string strStepped = "[clock]\nkind = \"stepped\"\n[device]\nanswer-delay = 0\n";
const std::string strStation = "[[station]]\nbsid = \"00120A010203\"\nfrequency = 2587500\n"
                               "bandwidth = 10000\npreamble = 3\nrssi = -58\ncinr = 28\n";

using Texts = std::vector<std::string>;

class Steering : public testing::Test {
  protected:
    void Open(const std::string &strScenario) {
        m_pstSteered = std::make_unique<SteeredDevice>(strScenario);
        m_pstSteered->Listen();
    }
    std::string Say(const std::string &strCommand) { return m_pstSteered->Say(strCommand); }
    int32_t Send(const std::string &strMessage) { return m_pstSteered->Send(strMessage); }
    Texts Heard() { return m_pstSteered->Heard(); }
    // The part of the state behind a key, to the end of its object or list.
    std::string Part(const std::string &strKey, char cEnd) {
        const std::string strState = Say("state");
        const size_t uStart = strState.find("\"" + strKey + "\":");
        return uStart == std::string::npos
                   ? strState
                   : strState.substr(uStart, strState.find(cEnd, uStart) + 1 - uStart);
    }

    std::unique_ptr<SteeredDevice> m_pstSteered;
};

TEST_F(Steering, StateIsOneObject) {
    Open("seed = 7\n" + strStepped + strStation);
    EXPECT_EQ(Say("state"),
              "ok {\"time\":0.001000,\"clock\":\"stepped\",\"seed\":7,"
              "\"link\":{\"state\":\"unsynchronised\",\"serving\":null},"
              "\"stations\":[{\"bsid\":\"00:12:0A:01:02:03\",\"frequency\":2587500,"
              "\"bandwidth\":10000,\"preamble\":3,\"on-air\":true,\"heard\":true,\"rssi\":-58.0,"
              "\"cinr\":28.0,\"serving\":false}],\"flows\":[],"
              "\"counters\":{\"downlink-bytes\":0,\"downlink-packets\":0,\"uplink-bytes\":0,"
              "\"uplink-packets\":0,\"packets-lost\":0,\"bandwidth-requests\":0,"
              "\"messages-waiting\":0,\"messages-lost\":0},\"faults\":[]}");
}

TEST_F(Steering, StateShowsLinkAndFlows) {
    Open(strStepped + pcFourStations + pcLinkUp +
         "[[service-flow]]\ndirection = \"uplink\"\ntype = \"UGS\"\nmax-rate = 64000\n");
    Say("advance 1");
    EXPECT_EQ(Part("link", '}'),
              "\"link\":{\"state\":\"link-up\",\"serving\":\"00:12:0A:01:02:03\"}");
    // Packets of 600 bytes every 100 ms, a grant for 160 bytes every 20 ms: four grants a packet,
    // the last one 60 ms after it came. The tenth one came just now.
    EXPECT_EQ(Part("flows", ']'),
              "\"flows\":[{\"sfid\":1,\"cid\":4096,\"direction\":\"uplink\","
              "\"scheduling-type\":6,\"packets\":9,\"bytes\":5560,\"grants\":50,\"queued\":440,"
              "\"lost\":0,\"late\":0,\"latency\":60.000,\"jitter\":0.000}]");
}

TEST_F(Steering, StateShowsWhereTheModemIsWhenStationsHavePlaces) {
    Open(strStepped + "[[station]]\nbsid = \"00120A010203\"\nfrequency = 2587500\n"
                      "bandwidth = 10000\npreamble = 3\nx = 1000\ny = 0\n"
                      "[[way-point]]\nat = 1\nx = 10\ny = 20\n"
                      "[[way-point]]\nat = 11\nx = 40\ny = 60\n");
    EXPECT_EQ(Part("place", '}'), "\"place\":{\"x\":10.0,\"y\":20.0,\"travelled\":0.0}");
    Say("advance 5.999");
    EXPECT_EQ(Part("place", '}'), "\"place\":{\"x\":25.0,\"y\":40.0,\"travelled\":25.0}");
    Say("move x=25 y=30");
    EXPECT_EQ(Part("place", '}'), "\"place\":{\"x\":25.0,\"y\":30.0,\"travelled\":25.0}");
}

TEST_F(Steering, StationsAreThoseOfTheState) {
    Open(strStepped + strStation);
    EXPECT_EQ(Say("stations"), "ok [{\"bsid\":\"00:12:0A:01:02:03\",\"frequency\":2587500,"
                               "\"bandwidth\":10000,\"preamble\":3,\"on-air\":true,\"heard\":true,"
                               "\"rssi\":-58.0,\"cinr\":28.0,\"serving\":false}]");
}

TEST_F(Steering, EventsHappenAtOnceWithTheKeysOfTheScenario) {
    Open(strStepped + strStation);
    EXPECT_EQ(Say("fade station=00:12:0a:01:02:03 by=30"), "ok");
    EXPECT_EQ(Part("rssi", ','), "\"rssi\":-88.0,");
    EXPECT_EQ(Say("fade station=\"00 12 0a 01 02 03\" by=-30.5 over=2"), "ok");
    Say("advance 1");
    EXPECT_EQ(Part("rssi", ','), "\"rssi\":-72.8,");
    EXPECT_EQ(Say("  vanish   station=00120A010203  "), "ok");
    EXPECT_EQ(Part("on-air", ','), "\"on-air\":false,");
    EXPECT_EQ(Say("appear station=00120A010203"), "ok");
    EXPECT_EQ(Part("on-air", ','), "\"on-air\":true,");
}

TEST_F(Steering, MessagesOfACommandAreDeliveredWhenItsAnswerIsThere) {
    Open(strStepped + pcFourStations + pcLinkUp);
    EXPECT_EQ(Say("message bytes=03000200"), "ok");
    EXPECT_EQ(Heard(), Texts{"03 00 02 00"});
    EXPECT_EQ(Say("link-loss reason=phy-sync-error"), "ok");
    EXPECT_EQ(Part("link", '}'), "\"link\":{\"state\":\"unsynchronised\",\"serving\":null}");
    EXPECT_EQ(Heard().size(), 1U);
}

TEST_F(Steering, AnEventCanWaitForItsTime) {
    Open(strStepped + strStation);
    EXPECT_EQ(Say("message bytes=03000200 at=2.5"), "ok");
    EXPECT_EQ(Say("advance 2.4"), "ok 2.401000");
    EXPECT_EQ(Heard(), Texts{});
    EXPECT_EQ(Say("advance 0.1"), "ok 2.501000");
    EXPECT_EQ(Heard(), Texts{"03 00 02 00"});
    EXPECT_EQ(Say("message bytes=03000200 at=2.5"), "error \"at\" is over already");
}

TEST_F(Steering, TimeGoesToAMessageAndToTheLastAnswer) {
    Open(strStepped + strStation);
    EXPECT_EQ(Say("message bytes=03000200 at=5"), "ok");
    EXPECT_EQ(Say("until 3/2"), "ok 5.000000");
    EXPECT_EQ(Say("until 3/2 limit=10"), "error the limit was reached first, at 15.000000");
    EXPECT_EQ(Send("02 00 03 00"), 0);
    EXPECT_EQ(Say("until idle"), "ok 15.001000");
    Heard();
}

TEST_F(Steering, TheRealClockHasAScaleAndDoesNotGoWhenTold) {
    Open("time-scale = 0.001\n");
    EXPECT_EQ(Say("time-scale"), "ok 0.001");
    EXPECT_EQ(Say("advance 1"),
              "error the clock is the real one: only the stepped one goes when told");
    EXPECT_EQ(Say("message bytes=03000200 at=100"), "ok");
    EXPECT_EQ(Say("time-scale 10000"), "ok 10000");
    const auto stEnd = std::chrono::steady_clock::now() + 10s;
    Texts astrHeard;
    while (astrHeard.empty() && std::chrono::steady_clock::now() < stEnd) {
        std::this_thread::sleep_for(1ms);
        astrHeard = Heard();
    }
    EXPECT_EQ(astrHeard, Texts{"03 00 02 00"});
}

TEST_F(Steering, TheSteppedClockHasNoScale) {
    Open(strStepped);
    EXPECT_EQ(Say("time-scale 2"), "error the clock is stepped: it has no scale");
    EXPECT_EQ(Say("seed"), "ok 1");
}

// From a command on, chance is that of its seed, whatever was before.
TEST_F(Steering, ASeedThatIsSetIsTheSeedOfAllChanceFromNowOn) {
    const std::string strChancy = strStepped + "[half-mini-card]\nexchanges = 0\n" + strStation +
                                  "variation = 10\n[[fault]]\nkind = \"drop\"\nprobability = 0.5\n";
    const auto Run = [&](const std::string &strScenario, const std::string &strSeed) {
        Open(strScenario);
        for (int i = 0; i < 20; ++i) {
            Send("24 00 01 00");
        }
        Say("advance 1");
        Heard();
        if (!strSeed.empty()) {
            EXPECT_EQ(Say("seed " + strSeed), "ok " + strSeed);
        }
        std::string strRun;
        for (int i = 0; i < 40; ++i) {
            Send("24 00 01 00");
            Say("advance 1");
            strRun += Heard().empty() ? "-" : "+";
        }
        return strRun + Part("rssi", ',') + Say("seed");
    };
    const std::string strNine = Run(strChancy, "9");
    EXPECT_EQ(Run("seed = 9\n" + strChancy, "9"), strNine);
    EXPECT_EQ(Run("seed = 77\n" + strChancy, "9"), strNine);
    const std::string strTen = Run(strChancy, "10");
    EXPECT_NE(strTen.substr(0, 40), strNine.substr(0, 40));
    EXPECT_NE(strTen.substr(40, 13), strNine.substr(40, 13));
    EXPECT_NE(Run("seed = 9\n" + strChancy, "").substr(0, 40), strNine.substr(0, 40));
}

TEST_F(Steering, TheSeedIsSetWithTheRealClockToo) {
    Open("time-scale = 0.001\nseed = 7\n");
    EXPECT_EQ(Say("seed 4"), "ok 4");
    EXPECT_EQ(Say("seed"), "ok 4");
    EXPECT_EQ(Part("seed", ','), "\"seed\":4,");
    EXPECT_EQ(Say("seed -1"), "error \"seed\" must be a whole number from 0 to "
                              "9223372036854775807");
    EXPECT_EQ(Say("seed 5 6"), "error nothing is known of \"6\" here");
    EXPECT_EQ(Say("seed now=5"), "error \"now\" is not known here");
    EXPECT_EQ(Say("seed"), "ok 4");
}

TEST_F(Steering, FaultsAreAddedAndSwitched) {
    Open(strStepped + strStation + "[[fault]]\nkind = \"drop\"\ntype = 36\n");
    EXPECT_EQ(Send("24 00 01 00"), 0);
    Say("advance 1");
    EXPECT_EQ(Heard(), Texts{});
    EXPECT_EQ(Part("faults", ']'),
              "\"faults\":[{\"number\":1,\"kind\":\"drop\",\"on\":true,\"hits\":1}]");
    EXPECT_EQ(Say("fault off 1"), "ok");
    EXPECT_EQ(Send("24 00 01 00"), 0);
    Say("advance 1");
    EXPECT_EQ(Heard(), Texts{"24 00 02 00"});
    EXPECT_EQ(Say("fault fail code=-27 type=36 count=1"), "ok 2");
    EXPECT_EQ(Send("24 00 01 00"), -27);
    EXPECT_EQ(Send("24 00 01 00"), 0);
    Say("advance 1");
    EXPECT_EQ(Heard(), Texts{"24 00 02 00"});
    EXPECT_EQ(Say("fault on all"), "ok");
    EXPECT_EQ(Send("24 00 01 00"), 0);
    Say("advance 1");
    EXPECT_EQ(Heard(), Texts{});
    EXPECT_EQ(Part("faults", ']'),
              "\"faults\":[{\"number\":1,\"kind\":\"drop\",\"on\":true,\"hits\":2},"
              "{\"number\":2,\"kind\":\"fail\",\"on\":true,\"hits\":1}]");
}

TEST_F(Steering, HelpNamesEveryCommandAndEvent) {
    Open(strStepped);
    EXPECT_EQ(
        Say("help"),
        "ok state; stations; advance SECONDS; until TYPE/SUBTYPE|idle [limit=SECONDS]; "
        "time-scale [SCALE]; seed [SEED]; save FILE; load FILE; fault KIND [KEY=VALUE]...; fault "
        "on|off NUMBER|all; help; "
        "EVENT [KEY=VALUE]..., EVENT one of fade move vanish appear link-loss dreg reset paging "
        "complete-wake-up firmware-shutdown half-mini-card-wake-up half-mini-card-shutdown "
        "device-unload ip-filter-status request message flow-added flow-changed flow-deleted "
        "traffic-waits handover crash");
}

TEST_F(Steering, WhatIsNoCommandIsRefusedAndChangesNothing) {
    Open(strStepped + strStation);
    const std::string strBefore = Say("state");
    const struct {
        std::string strCommand;
        std::string strAnswer;
    } astCases[] = {
        {"", "error there is no command in this line"},
        {"   ", "error there is no command in this line"},
        {"dance", "error there is no command \"dance\" (help tells all)"},
        {"fade", "error \"station\" is missing"},
        {"fade station=00120A010203", "error \"by\" is missing"},
        {"fade station=00120A010203 by=ten", "error \"by\" must be a number from -200 to 200"},
        {"fade station=00120A010204 by=1", "error \"station\" is the BS ID of no station"},
        {"fade station=00120A010203 by=1 by=2", "error \"by\" stands twice"},
        {"fade station=00120A010203 by=1 colour=2", "error \"colour\" is not known here"},
        {"fade station=00120A010203 by=1 now", "error nothing is known of \"now\" here"},
        {"fade station=\"00120A010203 by=1", "error a quote is never closed"},
        {"fade station=\"00120A010203\"by=1", "error a blank is missing behind a quote"},
        {"message bytes=0300020", "error \"bytes\" must be whole bytes, each of two hexadecimal "
                                  "digits"},
        {"advance", "error something is missing behind the command (help tells what)"},
        {"advance -1", "error \"seconds\" must be a number from 0 to 1000000000"},
        {"advance nan", "error \"seconds\" must be a number from 0 to 1000000000"},
        {"advance 1 2", "error nothing is known of \"2\" here"},
        {"until 2", "error until what is \"idle\" or the type and the subtype of a message, 2/2"},
        {"until 2/65536",
         "error until what is \"idle\" or the type and the subtype of a message, 2/2"},
        {"until 2/2 limit=x", "error \"limit\" must be a number from 0 to 1000000000"},
        {"time-scale 0", "error \"scale\" must be a number from 0.001 to 1000000"},
        {"fault", "error something is missing behind the command (help tells what)"},
        {"fault off 1", "error there is no fault 1"},
        {"fault off", "error something is missing behind the command (help tells what)"},
        {"fault drop colour=1", "error \"colour\" is not known here"},
        {"fault bend", "error \"kind\" must be one of \"fail\", \"drop\", \"delay\", \"repeat\", "
                       "\"reorder\", \"truncate\", \"corrupt\""},
        {"state now", "error nothing is known of \"now\" here"},
        {"state\x1B[31m", "error a command is a line of text"},
        {"state \xFF", "error a command is a line of text"},
        {std::string("state\0", 6), "error a command is a line of text"},
    };
    for (const auto &stCase : astCases) {
        EXPECT_EQ(Say(stCase.strCommand), stCase.strAnswer) << stCase.strCommand;
    }
    EXPECT_EQ(Say("state"), strBefore);
    EXPECT_EQ(Say("state\r"), strBefore);
}

// The socket.

class ControlSocket : public Steering {
  protected:
    ControlSocket()
        : m_strPath(testing::TempDir() + "control-" + std::to_string(getpid()) + ".socket") {
        std::filesystem::remove(m_strPath);
    }
    ~ControlSocket() override { std::filesystem::remove(m_strPath); }
    void Listen(const std::string &strScenario) {
        Open(strScenario);
        m_pstControl = std::make_unique<Control>(m_strPath);
        m_pstControl->Serve(m_pstSteered->TheDevice());
    }
    // What is said against a socket at the path.
    std::string ReasonAgainst(const std::string &strPath) {
        try {
            const Control stControl(strPath);
            return "";
        } catch (const ScenarioError &stError) {
            return stError.what();
        }
    }

    std::string m_strPath;
    std::unique_ptr<Control> m_pstControl;
};

// One that is connected to the socket.
class Peer {
  public:
    explicit Peer(const std::string &strPath) : m_iSocket(socket(AF_UNIX, SOCK_STREAM, 0)) {
        sockaddr_un stAddress{};
        stAddress.sun_family = AF_UNIX;
        strPath.copy(stAddress.sun_path, sizeof stAddress.sun_path - 1);
        m_bConnected = connect(m_iSocket, reinterpret_cast<const sockaddr *>(&stAddress),
                               sizeof stAddress) == 0;
    }
    Peer(const Peer &) = delete;
    Peer &operator=(const Peer &) = delete;
    ~Peer() { (void)close(m_iSocket); }

    bool Connected() const { return m_bConnected; }
    void Write(const std::string &strBytes) const {
        for (size_t uSent = 0; uSent < strBytes.size();) {
            const ssize_t iCount =
                send(m_iSocket, strBytes.data() + uSent, strBytes.size() - uSent, MSG_NOSIGNAL);
            ASSERT_GT(iCount, 0);
            uSent += static_cast<size_t>(iCount);
        }
    }
    void EndWriting() const { EXPECT_EQ(shutdown(m_iSocket, SHUT_WR), 0); }
    // The next line without its end; "(end)" behind the last one.
    std::string Line() {
        size_t uEnd = 0;
        while ((uEnd = m_strReceived.find('\n')) == std::string::npos) {
            char acBlock[4096];
            const ssize_t iCount = recv(m_iSocket, acBlock, sizeof acBlock, 0);
            if (iCount <= 0) {
                return "(end)";
            }
            m_strReceived.append(acBlock, static_cast<size_t>(iCount));
        }
        std::string strLine = m_strReceived.substr(0, uEnd);
        m_strReceived.erase(0, uEnd + 1);
        return strLine;
    }

  private:
    int m_iSocket;
    bool m_bConnected = false;
    std::string m_strReceived;
};

TEST_F(ControlSocket, AnswersEachLineInItsOrder) {
    Listen(strStepped + strStation);
    Peer stPeer(m_strPath);
    stPeer.Write("advance 1\nseed\nadva");
    EXPECT_EQ(stPeer.Line(), "ok 1.001000");
    EXPECT_EQ(stPeer.Line(), "ok 1");
    stPeer.Write("nce 1\r\n");
    EXPECT_EQ(stPeer.Line(), "ok 2.001000");
}

TEST_F(ControlSocket, IsForItsOwnerAloneAndGoneWithTheControl) {
    Listen(strStepped);
    struct stat stStatus {};
    ASSERT_EQ(lstat(m_strPath.c_str(), &stStatus), 0);
    EXPECT_EQ(stStatus.st_mode, S_IFSOCK | 0600U);
    m_pstControl.reset();
    EXPECT_NE(lstat(m_strPath.c_str(), &stStatus), 0);
}

TEST_F(ControlSocket, ReplacesOneThatNobodyListensAt) {
    const int iStale = socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un stAddress{};
    stAddress.sun_family = AF_UNIX;
    m_strPath.copy(stAddress.sun_path, sizeof stAddress.sun_path - 1);
    ASSERT_EQ(bind(iStale, reinterpret_cast<const sockaddr *>(&stAddress), sizeof stAddress), 0);
    ASSERT_EQ(close(iStale), 0);
    Listen(strStepped);
    Peer stPeer(m_strPath);
    stPeer.Write("seed\n");
    EXPECT_EQ(stPeer.Line(), "ok 1");
}

TEST_F(ControlSocket, RefusesAPathWhereSomethingElseStands) {
    std::ofstream(m_strPath) << "precious";
    EXPECT_EQ(ReasonAgainst(m_strPath),
              m_strPath + ": cannot be the control socket: something else stands there");
    EXPECT_EQ(std::filesystem::file_size(m_strPath), 8U);
    std::filesystem::remove(m_strPath);
    Listen(strStepped);
    EXPECT_EQ(ReasonAgainst(m_strPath),
              m_strPath + ": cannot be the control socket: somebody listens there already");
    EXPECT_TRUE(Peer(m_strPath).Connected());
    EXPECT_EQ(ReasonAgainst("/nonexistent/socket"),
              "/nonexistent/socket: cannot be the control socket: No such file or directory");
    const std::string strLong = "/tmp/" + std::string(103, 'x');
    EXPECT_EQ(ReasonAgainst(strLong), strLong + ": cannot be the control socket: the path is "
                                                "longer than 107 bytes");
}

TEST_F(ControlSocket, AFileThatHasTakenThePlaceOfItsOwnStays) {
    Listen(strStepped);
    std::filesystem::remove(m_strPath);
    std::ofstream(m_strPath) << "precious";
    m_pstControl.reset();
    EXPECT_TRUE(std::filesystem::exists(m_strPath));
}

TEST_F(ControlSocket, HalfALineAndAnEndlessOneAreErrors) {
    Listen(strStepped);
    Peer stHalf(m_strPath);
    stHalf.Write("see");
    stHalf.EndWriting();
    EXPECT_EQ(stHalf.Line(), "error a command ends with a line end");
    EXPECT_EQ(stHalf.Line(), "(end)");
    Peer stEndless(m_strPath);
    stEndless.Write(std::string(1000000, 'x'));
    EXPECT_EQ(stEndless.Line(), "error a command has at most 65536 bytes");
    stEndless.Write(std::string(1000000, 'y') + "\nseed\n");
    EXPECT_EQ(stEndless.Line(), "ok 1");
}

TEST_F(ControlSocket, BytesThatAreNoTextAreErrors) {
    Listen(strStepped);
    Peer stPeer(m_strPath);
    Random stRandom(1, "bytes");
    for (int i = 0; i < 200; ++i) {
        std::string strBytes;
        for (uint32_t u32Left = 1 + stRandom.Below(300); u32Left != 0; --u32Left) {
            const auto cByte = static_cast<char>(stRandom.Below(256));
            strBytes += cByte != '\n' ? cByte : ' ';
        }
        stPeer.Write("\x80" + strBytes + "\n");
        EXPECT_EQ(stPeer.Line(), "error a command is a line of text");
    }
    stPeer.Write("seed\n");
    EXPECT_EQ(stPeer.Line(), "ok 1");
}

TEST_F(ControlSocket, AHundredPeersAreServedAtOnce) {
    Listen(strStepped + strStation);
    std::vector<std::unique_ptr<Peer>> apstPeers;
    for (int i = 0; i < 100; ++i) {
        apstPeers.push_back(std::make_unique<Peer>(m_strPath));
        ASSERT_TRUE(apstPeers.back()->Connected());
        apstPeers.back()->Write("adv");
    }
    for (const auto &pstPeer : apstPeers) {
        pstPeer->Write("ance 0\nseed\n");
    }
    for (const auto &pstPeer : apstPeers) {
        EXPECT_EQ(pstPeer->Line(), "ok 0.001000");
        EXPECT_EQ(pstPeer->Line(), "ok 1");
    }
}

TEST_F(ControlSocket, APeerThatDoesNotReadHoldsUpNobody) {
    Listen(strStepped + strStation);
    Peer stDeaf(m_strPath);
    std::string strMany;
    for (int i = 0; i < 500; ++i) {
        strMany += "state\n";
    }
    stDeaf.Write(strMany);
    Peer stPeer(m_strPath);
    stPeer.Write("seed\n");
    EXPECT_EQ(stPeer.Line(), "ok 1");
    for (int i = 0; i < 500; ++i) {
        EXPECT_EQ(stDeaf.Line().substr(0, 20), "ok {\"time\":0.001000,");
    }
}

TEST_F(ControlSocket, PeersMayGoAtAnyMoment) {
    Listen(strStepped + strStation);
    for (int i = 0; i < 50; ++i) {
        const Peer stPeer(m_strPath);
        stPeer.Write(i % 2 == 0 ? "state\nstate\nstate\n" : "state");
    }
    Peer stPeer(m_strPath);
    stPeer.Write("seed\n");
    EXPECT_EQ(stPeer.Line(), "ok 1");
}

// Time on its way for a command does not hold up the end.
TEST_F(ControlSocket, EndsWhileACommandIsUnderWay) {
    Listen(strStepped + "[trace]\non = true\n[signalling]\nmap-period = 0.005\n" + pcFourStations +
           pcLinkUp);
    Peer stPeer(m_strPath);
    stPeer.Write("advance 1000000000\n");
    std::this_thread::sleep_for(50ms);
    const auto stBegan = std::chrono::steady_clock::now();
    m_pstSteered->TheDevice()->Stop();
    m_pstControl.reset();
    EXPECT_LT(std::chrono::steady_clock::now() - stBegan, 60s);
}

// Requests of the client, commands and messages, all at once.
TEST_F(ControlSocket, SteersWhileTheClientSends) {
    Listen("time-scale = 100\n[device]\nanswer-delay = 0\n[half-mini-card]\nexchanges = 0\n" +
           strStation);
    std::thread stClient([&] {
        for (int i = 0; i < 300; ++i) {
            EXPECT_EQ(Send("24 00 01 00"), 0);
        }
    });
    std::vector<std::thread> astSteering;
    for (int i = 0; i < 3; ++i) {
        astSteering.emplace_back([&] {
            Peer stPeer(m_strPath);
            for (int j = 0; j < 100; ++j) {
                stPeer.Write("fade station=00120A010203 by=1\nstate\ntime-scale 50\n");
                EXPECT_EQ(stPeer.Line(), "ok");
                EXPECT_EQ(stPeer.Line().substr(0, 11), "ok {\"time\":");
                EXPECT_EQ(stPeer.Line(), "ok 50");
            }
        });
    }
    stClient.join();
    for (std::thread &stThread : astSteering) {
        stThread.join();
    }
    EXPECT_EQ(Part("rssi", ','), "\"rssi\":-358.0,");
}

} // namespace
