#include <Util/ExclusiveService.h>

ExclusiveService::ExclusiveService(QObject* parent)
    : QObject(parent)
{}

QObject* ExclusiveService::currentClient() const
{
    return current;
}

void ExclusiveService::setClient(QObject* client)
{
    if (client == current) {
        return;
    }
    QObject* const previous = current;
    current = nullptr;

    QPointer<ExclusiveService> const self(this);
    QPointer<QObject> const next(client);
    Q_EMIT clientAboutToBeChanged(previous, client);
    if (!self) {
        return;
    }
    current = next;
    Q_EMIT clientChanged(next);
}
