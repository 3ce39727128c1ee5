#include <Util/ExclusiveService.h>

ExclusiveService::ExclusiveService(QObject* parent)
    : QObject(parent)
{}

QObject* ExclusiveService::currentClient() const
{
    return current_;
}

void ExclusiveService::setClient(QObject* client)
{
    if (client == current_) {
        return;
    }
    QObject* const previous = current_;
    current_ = nullptr; // no client holds the resource while clientAboutToBeChanged() is being emitted

    QPointer<ExclusiveService> const self(this);
    QPointer<QObject> const next(client);
    Q_EMIT clientAboutToBeChanged(previous, client);
    if (!self) {
        return;
    }
    current_ = next;
    Q_EMIT clientChanged(next);
}
