import QtQml 2.15
import Zelkor.Util 1.0

QtObject {
    id: root

    property string text

    function answer() {
        text = "Observers register with role " + SimpleModel.RegisterObserver
    }

    Component.onCompleted: {
        ObjectsConnector.registerReceiver("question", root, "answer()")
        ObjectsConnector.registerEmitter("question", source, "requested()")
        source.requested()
    }

    property QtObject source: QtObject {
        signal requested()
    }
}
