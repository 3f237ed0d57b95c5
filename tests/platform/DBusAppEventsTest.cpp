#include "platform/linux/DBusAppEvents.h"
#include "PrivateSession.h"
#include "platform/Status.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using Platform::AppEvent;
using Platform::Linux::DBusAppEvents;
namespace Status = Platform::Status;

namespace {

struct Received {
    std::vector<AppEvent> events;
    std::string replyText;
    int result = Status::ok;
};

int record(const AppEvent& event, std::string& reply, void* refcon) {
    auto* received = static_cast<Received*>(refcon);
    received->events.push_back(event);
    reply = received->replyText;
    return received->result;
}

int recordOther(const AppEvent& event, std::string& reply, void* refcon) {
    int result = record(event, reply, refcon);
    reply = "other";
    return result;
}

class DBusAppEventsTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(session.ok()) << session.error(); }

    std::unique_ptr<DBusAppEvents> openOrFail(const std::string& name) {
        int status = -1;
        auto events = DBusAppEvents::open(name, status);
        EXPECT_EQ(status, Status::ok);
        return events;
    }

    // Starts the stand-in font manager and waits until its name has an owner.
    void startPeer(DBusAppEvents& observer, const std::vector<std::string>& extra = {}) {
        std::vector<std::string> argv = {VLM_TEST_BUS_PEER, "org.vellumine.Vellumine"};
        argv.insert(argv.end(), extra.begin(), extra.end());
        ASSERT_GT(session.spawn(argv), 0);
        ASSERT_TRUE(VlmTest::waitFor([&] { return observer.hasOwner("org.vellumine.Vellumine"); }));
    }

    // Sends asynchronously from `client` and dispatches both ends until the reply came.
    int roundTrip(DBusAppEvents& client, DBusAppEvents& server, const AppEvent& event,
                  std::string& reply) {
        int result = 1;
        bool done = false;
        EXPECT_EQ(client.sendAsync(server.uniqueName(), event,
                                   [&](int status, const std::string& text) {
                                       result = status;
                                       reply = text;
                                       done = true;
                                   }),
                  Status::ok);
        EXPECT_TRUE(VlmTest::waitFor([&] {
            server.processPending();
            client.processPending();
            return done;
        }));
        return result;
    }

    VlmTest::PrivateSession session;
};

TEST_F(DBusAppEventsTest, HostHandlerReceivesFontManagerEventWithoutBlockingTheSender) {
    auto host = openOrFail("org.galley.Galley");
    auto fontManager = openOrFail("org.vellumine.Vellumine");
    ASSERT_TRUE(host && fontManager);
    Received received;
    ASSERT_EQ(host->installHandler("VLM4", Platform::anyEventID, record, &received), Status::ok);

    ASSERT_EQ(fontManager->sendNoReply("InDn", {"VLM4", "FSBC", "Grüße"}), Status::ok);
    ASSERT_EQ(fontManager->sendNoReply("org.galley.Galley", {"VLM4", "FFSC", ""}), Status::ok);

    ASSERT_TRUE(VlmTest::waitFor([&] {
        host->processPending();
        return received.events.size() == 2;
    }));
    EXPECT_EQ(received.events[0].eventClass, "VLM4");
    EXPECT_EQ(received.events[0].eventID, "FSBC");
    EXPECT_EQ(received.events[0].text, "Grüße");
    EXPECT_EQ(received.events[1].eventID, "FFSC");
}

TEST_F(DBusAppEventsTest, SendBySignatureBlocksForTheReplyOfAnotherProcess) {
    auto host = openOrFail("org.galley.Galley");
    ASSERT_TRUE(host);
    startPeer(*host);

    std::string reply;
    const std::string request = "<cmd>fontRequest</cmd>\n<font name=\"Zapf & Söhne\"/>";
    ASSERT_EQ(host->send("VLMQ", {"VLMQ", "****", request}, reply), Status::ok);
    EXPECT_EQ(reply, "VLMQ/****:" + request);

    EXPECT_EQ(host->send("VLMQ", {"ABCD", "****", ""}, reply), Status::notHandled);
    EXPECT_EQ(reply, "");
}

TEST_F(DBusAppEventsTest, NameWithoutOwnerIsNotRunningAndNothingIsStarted) {
    auto host = openOrFail("");
    ASSERT_TRUE(host);
    std::string reply = "stale";
    EXPECT_EQ(host->send("VLMQ", {"VLMQ", "****", "x"}, reply), Status::notRunning);
    EXPECT_EQ(reply, "");
    EXPECT_EQ(host->sendNoReply("VLMQ", {"VLM4", "FSBC", ""}), Status::notRunning);
    EXPECT_EQ(host->send("ZZZZ", {"VLMQ", "****", "x"}, reply), Status::notRunning);
    EXPECT_FALSE(host->hasOwner("org.vellumine.Vellumine"));
}

TEST_F(DBusAppEventsTest, AReceiverThatNeverAnswersIsATimeout) {
    // The bus's default method-call timeout, shortened for the test through sd-bus's own
    // setting; it is read when a connection is made.
    setenv("SYSTEMD_BUS_TIMEOUT", "1", 1);
    auto client = openOrFail("");
    unsetenv("SYSTEMD_BUS_TIMEOUT");
    auto silent = openOrFail("org.vellumine.Vellumine");
    ASSERT_TRUE(client && silent);
    Received received;
    silent->installHandler("VLMQ", Platform::anyEventID, record, &received);

    std::string reply = "stale";
    EXPECT_EQ(client->send("VLMQ", {"VLMQ", "****", ""}, reply), Status::timeout);
    EXPECT_EQ(reply, "");
}

TEST_F(DBusAppEventsTest, SecondOwnerOfANameIsRefused) {
    auto first = openOrFail("org.vellumine.Vellumine");
    ASSERT_TRUE(first);
    int status = Status::ok;
    EXPECT_EQ(DBusAppEvents::open("org.vellumine.Vellumine", status), nullptr);
    EXPECT_EQ(status, Status::permissionDenied);

    first.reset();
    auto second = DBusAppEvents::open("org.vellumine.Vellumine", status);
    EXPECT_NE(second, nullptr) << "the name must be free again once its owner closed";
}

TEST_F(DBusAppEventsTest, HandlersAreChosenByExactIDThenWildcardAndCanBeRemoved) {
    auto server = openOrFail("");
    auto client = openOrFail("");
    ASSERT_TRUE(server && client);
    Received exact{{}, "exact", Status::ok};
    Received wildcard{{}, "any", Status::ok};
    ASSERT_EQ(server->installHandler("VLM4", "FSBC", record, &exact), Status::ok);
    ASSERT_EQ(server->installHandler("VLM4", Platform::anyEventID, record, &wildcard), Status::ok);

    std::string reply;
    EXPECT_EQ(roundTrip(*client, *server, {"VLM4", "FSBC", ""}, reply), Status::ok);
    EXPECT_EQ(reply, "exact");
    EXPECT_EQ(roundTrip(*client, *server, {"VLM4", "FFSC", ""}, reply), Status::ok);
    EXPECT_EQ(reply, "any");

    // Removal needs the same routine; a different one leaves the handler in place.
    EXPECT_NE(server->removeHandler("VLM4", "FSBC", recordOther), Status::ok);
    EXPECT_EQ(server->removeHandler("VLM4", "FSBC", record), Status::ok);
    EXPECT_EQ(roundTrip(*client, *server, {"VLM4", "FSBC", ""}, reply), Status::ok);
    EXPECT_EQ(reply, "any");

    // Installing again under the same class and ID replaces the routine.
    ASSERT_EQ(server->installHandler("VLM4", Platform::anyEventID, recordOther, &wildcard),
              Status::ok);
    EXPECT_EQ(roundTrip(*client, *server, {"VLM4", "XXXX", ""}, reply), Status::ok);
    EXPECT_EQ(reply, "other");

    EXPECT_EQ(server->removeHandler("VLM4", Platform::anyEventID, recordOther), Status::ok);
    EXPECT_EQ(roundTrip(*client, *server, {"VLM4", "FSBC", ""}, reply), Status::notHandled);
    EXPECT_EQ(exact.events.size(), 1u);
    EXPECT_EQ(wildcard.events.size(), 3u);
}

TEST_F(DBusAppEventsTest, HandlerStatusesBecomeErrorResultsOfTheSender) {
    auto server = openOrFail("");
    auto client = openOrFail("");
    ASSERT_TRUE(server && client);
    Received refusing{{}, "ignored", Status::notHandled};
    Received failing{{}, "ignored", Status::launchFailed};
    ASSERT_EQ(server->installHandler("AAAA", Platform::anyEventID, record, &refusing), Status::ok);
    ASSERT_EQ(server->installHandler("BBBB", Platform::anyEventID, record, &failing), Status::ok);

    std::string reply = "stale";
    EXPECT_EQ(roundTrip(*client, *server, {"AAAA", "****", ""}, reply), Status::notHandled);
    EXPECT_EQ(reply, "");
    EXPECT_EQ(roundTrip(*client, *server, {"BBBB", "****", ""}, reply), Status::transportError);
}

TEST_F(DBusAppEventsTest, MalformedHandlerCodesAreRefused) {
    auto events = openOrFail("");
    ASSERT_TRUE(events);
    Received received;
    EXPECT_EQ(events->installHandler("VLM", "****", record, &received), Status::invalidArgument);
    EXPECT_EQ(events->installHandler("VLM4", "*", record, &received), Status::invalidArgument);
    EXPECT_EQ(events->installHandler("VLM4", "****", nullptr, &received), Status::invalidArgument);
}

} // namespace
