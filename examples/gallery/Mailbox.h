#pragma once

/// \file
/// Items from any thread for the thread of one object.

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

/// Hands items over in batches, so that many of them are few events. Part of its owner, whose thread gets the items.
template <class Item>
class Mailbox
{
public:
    using Delivery = std::function<void(std::vector<Item> const&)>;

    Mailbox(QObject* owner, Delivery deliver)
        : owner_(owner)
        , deliver_(std::move(deliver))
    {}

    /// Any thread. Reports nothing to any log.
    void Put(Item item)
    {
        std::lock_guard<std::mutex> const lock(guard_);
        items_.push_back(std::move(item));
        if (items_.size() == 1) {
            QMetaObject::invokeMethod(
                owner_, [this] { Deliver(); }, Qt::QueuedConnection);
        }
    }

private:
    void Deliver() { deliver_(Take()); }

    std::vector<Item> Take()
    {
        std::lock_guard<std::mutex> const lock(guard_);
        return std::exchange(items_, {});
    }

    QObject* const owner_;
    Delivery const deliver_;
    std::mutex guard_;
    std::vector<Item> items_;
};

} // namespace Gallery
} // namespace Zelkor
