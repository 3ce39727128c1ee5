#pragma once

/// \file
/// A queue that passes items from any thread to the thread of a QObject.

#include <QtCore/QMetaObject>
#include <QtCore/QObject>

#include <functional>
#include <mutex>
#include <utility>
#include <vector>

namespace Zelkor
{
namespace Gallery
{

/// Delivers items on the thread of a QObject, the owner of the queue. The queue is a data member of the owner. One
/// event delivers all items that are in the queue.
template <class Item>
class CrossThreadQueue
{
public:
    using Delivery = std::function<void(std::vector<Item> const&)>;

    /// Creates a queue that delivers items by calling \a deliver on the thread of \a owner. \a owner must outlive the
    /// queue.
    CrossThreadQueue(QObject* owner, Delivery deliver)
        : owner_(owner)
        , deliver_(std::move(deliver))
    {}

    /// Queues \a item. Can be called on any thread. Push() does not log anything, so log sinks and message handlers can
    /// call it without causing infinite recursion or a deadlock.
    void Push(Item item)
    {
        std::lock_guard<std::mutex> const lock(mutex_);
        items_.push_back(std::move(item));
        if (items_.size() == 1) {
            QMetaObject::invokeMethod(
                owner_, [this] { Deliver(); }, Qt::QueuedConnection);
        }
    }

private:
    void Deliver() { deliver_(TakeAll()); }

    std::vector<Item> TakeAll()
    {
        std::lock_guard<std::mutex> const lock(mutex_);
        return std::exchange(items_, {});
    }

    QObject* const owner_;
    Delivery const deliver_;
    std::mutex mutex_;
    std::vector<Item> items_;
};

} // namespace Gallery
} // namespace Zelkor
