#include <support/displays/LayoutRequests.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QEvent>
#include <QtWidgets/QLayout>
#include <QtWidgets/QWidget>

namespace Zelkor::Testing
{

bool FollowsItsChildren(QWidget& container)
{
    class LayoutRequests : public QObject
    {
    public:
        int count = 0;

        bool eventFilter(QObject* /*watched*/, QEvent* event) override
        {
            count += event->type() == QEvent::LayoutRequest;
            return false;
        }
    } requests;

    for (int i = 0; i < 10 && container.layout()->activate(); ++i) { // the text finds its height in more than one pass
    }
    QCoreApplication::removePostedEvents(&container, QEvent::LayoutRequest);
    container.installEventFilter(&requests);
    QObject const child(&container);
    QCoreApplication::sendPostedEvents(&container, QEvent::LayoutRequest);
    return requests.count > 0;
}

} // namespace Zelkor::Testing
