import QtQuick 2.15
import Zelkor.Util 1.0

ListView {
    id: view
    model: items
    boundsBehavior: Flickable.StopAtBounds

    signal chosen()

    delegate: Rectangle {
        width: ListView.view.width
        height: 40
        color: area.pressed ? colours.pressed : "transparent"

        Image {
            id: icon
            x: 4
            anchors.verticalCenter: parent.verticalCenter
            source: IconPath
        }

        Text {
            anchors.left: icon.right
            anchors.leftMargin: 8
            anchors.verticalCenter: parent.verticalCenter
            color: colours.text
            text: Title
        }

        MouseArea {
            id: area
            anchors.fill: parent
            onClicked: {
                model.Click = true
                view.chosen()
            }
        }
    }

    // ListModelPage registers the Qt Widgets view as a receiver under the same name. Therefore, the Qt Widgets view
    // clears its selection when this QML view emits chosen().
    Component.onCompleted: ObjectsConnector.registerEmitter("chosen in QML", view, "chosen()")
}
