// Registers, unregisters and destroys objects with ObjectsConnector. After each step, the storm emits all signals and
// compares the calls to the slots with the connections of a model. In some steps, slots and overrides of
// connectNotify() and disconnectNotify() run further operations. The model cannot predict such a step. The sanitizers
// check it, and the storm then begins again with new objects.

#include <storms/Storm.h>

#include <Util/ObjectsConnector.h>

#include <QtCore/QMetaMethod>
#include <QtCore/QStringList>

#include <algorithm>
#include <array>
#include <cstddef>
#include <functional>
#include <memory>
#include <tuple>
#include <utility>
#include <vector>

using Zelkor::Testing::Random;
using Zelkor::Testing::Require;
using Zelkor::Util::ObjectsConnector;

/// A test object with two signals and two slots. It calls `onSlot` for each call of a slot, and `onNotify` when one of
/// its signals is connected or disconnected.
class Node : public QObject
{
    Q_OBJECT

public:
    Node(std::function<void(int slot)> onSlot, std::function<void()> onNotify)
        : onSlot_(std::move(onSlot))
        , onNotify_(std::move(onNotify))
    {}

Q_SIGNALS:
    void First();
    void Second();

public Q_SLOTS:
    void ReceiveFirst() { CallSlot(0); }
    void ReceiveSecond() { CallSlot(1); }

protected:
    void connectNotify(QMetaMethod const& signal) override { CallNotify(signal); }
    void disconnectNotify(QMetaMethod const& signal) override { CallNotify(signal); }

private:
    // Copy onSlot_ and onNotify_ before calling them, because the called function can destroy this object.
    void CallSlot(int slot)
    {
        auto const function = onSlot_;
        function(slot);
    }

    void CallNotify(QMetaMethod const& signal)
    {
        if (signal.enclosingMetaObject() == &staticMetaObject) {
            auto const function = onNotify_;
            function();
        }
    }

    std::function<void(int)> onSlot_;
    std::function<void()> onNotify_;
};

namespace
{

constexpr std::size_t NodeCount = 6;
constexpr std::size_t IdCount = 2;
constexpr std::size_t MethodCount = 2;

using SignalFunction = void (Node::*)();
std::array<SignalFunction, MethodCount> const signalFunctions{&Node::First, &Node::Second};

/// A signal or a slot of a node.
struct Method
{
    std::size_t node;
    std::size_t method;

    friend bool operator==(Method const& a, Method const& b)
    {
        return std::tie(a.node, a.method) == std::tie(b.node, b.method);
    }
};

struct Connection
{
    Method signal;
    Method slot;
    bool queued;
};

/// The signals and slots that should be registered under one ID.
struct ModelId
{
    std::vector<Method> emitters;
    std::vector<Method> receivers;
};

class ConnectorStorm
{
public:
    explicit ConnectorStorm(Random& random)
        : random_(random)
    {
        Restart();
    }

    void Step()
    {
        if (random_.OneIn(10)) {
            callbackOperations_ = 20;
            Operate();
            Emit(random_.Below(NodeCount), random_.Below(MethodCount));
            callbackOperations_ = 0;
            Restart();
            return;
        }
        Operate();
        CheckConnections();
    }

    void Finish() {}

private:
    void Restart()
    {
        for (std::size_t node = 0; node < NodeCount; ++node) {
            nodes_[node] = MakeNode(node);
        }
        ids_ = {};
        connections_.clear();
    }

    std::unique_ptr<Node> MakeNode(std::size_t node)
    {
        auto const onSlot = [this, node](int slot) {
            called_.push_back({node, static_cast<std::size_t>(slot)});
            OperateInCallback();
        };
        auto const onNotify = [this] {
            // Run no operation while a node is being destroyed: ~QObject() calls disconnectNotify() of the connected
            // senders while it holds a lock of Qt.
            if (destructions_ == 0) {
                OperateInCallback();
            }
        };
        return std::make_unique<Node>(onSlot, onNotify);
    }

    void OperateInCallback()
    {
        if (callbackOperations_ > 0 && random_.OneIn(2)) {
            --callbackOperations_;
            Operate();
        }
    }

    void Operate()
    {
        std::size_t const id = random_.Below(IdCount);
        Method const method{random_.Below(NodeCount), random_.Below(MethodCount)};
        if (!nodes_[method.node]) {
            return; // a callback runs while this node is being destroyed
        }
        switch (random_.Below(8)) {
        case 0:
        case 1:
            return RegisterEmitter(id, method, random_.OneIn(4));
        case 2:
        case 3:
            return RegisterReceiver(id, method, random_.OneIn(4));
        case 4:
            return UnregisterEmitter(id, method);
        case 5:
            return UnregisterReceiver(id, method);
        case 6:
            return ReplaceNode(method.node);
        default:
            return Emit(method.node, method.method);
        }
    }

    static QString Id(std::size_t id) { return QStringLiteral("id %1").arg(id); }

    QString Signal(Method const& signal) const
    {
        return signal.method == 0 ? QStringLiteral("First()") : QStringLiteral("2Second()");
    }

    QString Slot(Method const& slot) const
    {
        return slot.method == 0 ? QStringLiteral("1ReceiveFirst()") : QStringLiteral("ReceiveSecond()");
    }

    void RegisterEmitter(std::size_t id, Method const& signal, bool queued)
    {
        for (Method const& slot : ids_[id].receivers) {
            Connect(signal, slot, queued);
        }
        ids_[id].emitters.push_back(signal);
        ObjectsConnector::registerEmitter(Id(id), nodes_[signal.node].get(), Signal(signal), queued);
    }

    void RegisterReceiver(std::size_t id, Method const& slot, bool queued)
    {
        for (Method const& signal : ids_[id].emitters) {
            Connect(signal, slot, queued);
        }
        ids_[id].receivers.push_back(slot);
        ObjectsConnector::registerReceiver(Id(id), nodes_[slot.node].get(), Slot(slot), queued);
    }

    void UnregisterEmitter(std::size_t id, Method const& signal)
    {
        for (Method const& slot : ids_[id].receivers) {
            Disconnect(signal, slot);
        }
        Remove(ids_[id].emitters, signal);
        ObjectsConnector::unregisterEmitter(Id(id), nodes_[signal.node].get(), Signal(signal));
    }

    void UnregisterReceiver(std::size_t id, Method const& slot)
    {
        for (Method const& signal : ids_[id].emitters) {
            Disconnect(signal, slot);
        }
        Remove(ids_[id].receivers, slot);
        ObjectsConnector::unregisterReceiver(Id(id), nodes_[slot.node].get(), Slot(slot));
    }

    void ReplaceNode(std::size_t node)
    {
        for (std::size_t method = 0; method < MethodCount; ++method) {
            for (ModelId& id : ids_) {
                Remove(id.emitters, {node, method});
                Remove(id.receivers, {node, method});
            }
        }
        EraseConnections([node](Connection const& connection) {
            return connection.signal.node == node || connection.slot.node == node;
        });
        ++destructions_;
        nodes_[node].reset();
        --destructions_;
        nodes_[node] = MakeNode(node);
    }

    void Emit(std::size_t node, std::size_t signal)
    {
        if (nodes_[node]) {
            Q_EMIT(nodes_[node].get()->*signalFunctions[signal])();
            QCoreApplication::sendPostedEvents();
        }
    }

    void Connect(Method const& signal, Method const& slot, bool queued)
    {
        bool const exists = std::any_of(connections_.begin(), connections_.end(), [&](Connection const& connection) {
            return connection.signal == signal && connection.slot == slot;
        });
        if (signal.node != slot.node && !exists) {
            connections_.push_back({signal, slot, queued});
        }
    }

    void Disconnect(Method const& signal, Method const& slot)
    {
        EraseConnections(
            [&](Connection const& connection) { return connection.signal == signal && connection.slot == slot; });
    }

    template <class Predicate>
    void EraseConnections(Predicate const& predicate)
    {
        connections_.erase(std::remove_if(connections_.begin(), connections_.end(), predicate), connections_.end());
    }

    static void Remove(std::vector<Method>& methods, Method const& method)
    {
        methods.erase(std::remove(methods.begin(), methods.end(), method), methods.end());
    }

    void CheckConnections()
    {
        for (std::size_t node = 0; node < NodeCount; ++node) {
            for (std::size_t signal = 0; signal < MethodCount; ++signal) {
                called_.clear();
                Emit(node, signal);
                std::vector<Method> expected;
                for (bool const queued : {false, true}) {
                    for (Connection const& connection : connections_) {
                        if (connection.signal == Method{node, signal} && connection.queued == queued) {
                            expected.push_back(connection.slot);
                        }
                    }
                }
                Require(called_ == expected, "the signal calls the slots of the model");
            }
        }
    }

    Random& random_;
    std::array<ModelId, IdCount> ids_;
    std::vector<Connection> connections_; // in the order in which they were made
    std::vector<Method> called_;          // the slots that were called
    int destructions_ = 0;                // number of running destructors of nodes
    int callbackOperations_ = 0;          // number of operations that callbacks may still run in this step
    std::array<std::unique_ptr<Node>, NodeCount> nodes_;
};

} // namespace

int main(int argc, char** argv)
{
    return Zelkor::Testing::RunStorm<ConnectorStorm>(argc, argv);
}

#include "ConnectorStorm.moc"
