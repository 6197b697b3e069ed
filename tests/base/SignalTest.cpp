#include "base/Signal.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace korvo {

TEST(Signal, callsObserversInOrderUntilTheyDisconnect)
{
    Signal<int> signal;
    std::vector<int> seen;
    const auto first = signal.connect([&](int value) { seen.push_back(value); });
    {
        const auto second = signal.connect([&](int value) { seen.push_back(-value); });
        signal.emit(1);
    }
    signal.emit(2);
    EXPECT_EQ(seen, (std::vector{1, -1, 2}));
}

TEST(Signal, observersMayConnectAndDisconnectFromInsideACall)
{
    Signal<> signal;
    int late = 0;
    Connection added;
    Connection dropped;
    const auto changing = signal.connect([&] {
        added = signal.connect([&] { ++late; });
        dropped = {};
    });
    int droppedCalls = 0;
    dropped = signal.connect([&] { ++droppedCalls; });
    signal.emit();
    EXPECT_EQ(late, 0);
    EXPECT_EQ(droppedCalls, 0);
    signal.emit();
    EXPECT_EQ(late, 0) << "the second call replaced the observer before it was reached";
}

TEST(Signal, whatOneObserverThrowsKeepsNoOtherFromHearing)
{
    Signal<> signal;
    int heard = 0;
    const auto failing = signal.connect([] { throw std::runtime_error("first"); });
    const auto alsoFailing = signal.connect([] { throw std::logic_error("second"); });
    const auto hearing = signal.connect([&] { ++heard; });
    EXPECT_THROW(signal.emit(), std::runtime_error);
    EXPECT_EQ(heard, 1);
}

TEST(Signal, aConnectionMayOutliveItsSignal)
{
    const auto held = std::make_shared<int>();
    Connection connection;
    {
        Signal<> signal;
        connection = signal.connect([held] {});
    }
    EXPECT_EQ(held.use_count(), 2) << "the observer is the connection's";
    connection = {};
    EXPECT_EQ(held.use_count(), 1);
}

} // namespace korvo
