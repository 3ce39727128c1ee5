#include <support/displays/LayoutRequests.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QEvent>
#include <QtWidgets/QLayout>
#include <QtWidgets/QWidget>

namespace Zelkor::Testing
{

bool RequestsLayoutForNewChild(QWidget& container)
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

    // A layout that contains a label with word wrap must be activated several times until the height of the label is
    // stable. The limit of 10 activations prevents an endless loop.
    for (int i = 0; i < 10 && container.layout()->activate(); ++i) {
    }
    QCoreApplication::removePostedEvents(&container, QEvent::LayoutRequest);
    container.installEventFilter(&requests);
    QObject const child(&container);
    QCoreApplication::sendPostedEvents(&container, QEvent::LayoutRequest);
    return requests.count > 0;
}

} // namespace Zelkor::Testing
