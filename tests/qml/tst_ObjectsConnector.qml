import QtQml 2.15
import Zelkor.Testing 1.0
import Zelkor.Util 1.0

ModuleTestCase {
    id: testCase
    name: "ObjectsConnector"

    Component {
        id: emitterComponent

        QtObject {
            signal clicked()
            signal moved(int value)
            signal chosen(var value)
        }
    }

    Component {
        id: receiverComponent

        QtObject {
            property int toggled: 0
            property var shown

            function toggle() {
                ++toggled
            }

            function show(value) {
                shown = value
            }

            function showNumber(value: int) {
                shown = value
            }
        }
    }

    Component {
        id: emitterAndReceiverComponent

        QtObject {
            property int toggled: 0

            signal clicked()

            function toggle() {
                ++toggled
            }
        }
    }

    Component {
        id: valueComponent

        ValueObject {}
    }

    function create(component) {
        return createTemporaryObject(component, testCase)
    }

    function deliverQueuedSignals() {
        wait(0)
    }

    function test_connectsInEitherOrder_data() {
        return [
            { tag: "receiver first", receiverFirst: true, signal: "clicked()", slot: "toggle()" },
            { tag: "emitter first", receiverFirst: false, signal: "clicked()", slot: "toggle()" },
            { tag: "receiver first, with code digits", receiverFirst: true, signal: "2clicked()", slot: "1toggle()" },
            { tag: "emitter first, with code digits", receiverFirst: false, signal: "2clicked()", slot: "1toggle()" },
            { tag: "code digit of the signal only", receiverFirst: true, signal: "2clicked()", slot: "toggle()" },
            { tag: "code digit of the slot only", receiverFirst: false, signal: "clicked()", slot: "1toggle()" },
        ]
    }

    function test_connectsInEitherOrder(data) {
        const emitter = create(emitterComponent)
        const receiver = create(receiverComponent)
        if (data.receiverFirst) {
            ObjectsConnector.registerReceiver("light", receiver, data.slot)
            ObjectsConnector.registerEmitter("light", emitter, data.signal)
        } else {
            ObjectsConnector.registerEmitter("light", emitter, data.signal)
            ObjectsConnector.registerReceiver("light", receiver, data.slot)
        }
        emitter.clicked()
        compare(receiver.toggled, 1)
    }

    function test_secondRegistrationSelectsTheConnectionType_data() {
        return [
            { tag: "neither", emitterFirst: true, emitterQueued: false, receiverQueued: false, queued: false },
            { tag: "emitter, first", emitterFirst: true, emitterQueued: true, receiverQueued: false, queued: false },
            { tag: "receiver, second", emitterFirst: true, emitterQueued: false, receiverQueued: true, queued: true },
            { tag: "receiver, first", emitterFirst: false, emitterQueued: false, receiverQueued: true, queued: false },
            { tag: "emitter, second", emitterFirst: false, emitterQueued: true, receiverQueued: false, queued: true },
            { tag: "both", emitterFirst: true, emitterQueued: true, receiverQueued: true, queued: true },
        ]
    }

    function test_secondRegistrationSelectsTheConnectionType(data) {
        const emitter = create(emitterComponent)
        const receiver = create(receiverComponent)
        const registerEmitter = () =>
            ObjectsConnector.registerEmitter("light", emitter, "clicked()", data.emitterQueued)
        const registerReceiver = () =>
            ObjectsConnector.registerReceiver("light", receiver, "toggle()", data.receiverQueued)
        if (data.emitterFirst) {
            registerEmitter()
            registerReceiver()
        } else {
            registerReceiver()
            registerEmitter()
        }
        emitter.clicked()
        compare(receiver.toggled, data.queued ? 0 : 1)
        deliverQueuedSignals()
        compare(receiver.toggled, 1)
    }

    function test_connectsEveryEmitterToEveryReceiver() {
        const emitters = [create(emitterComponent), create(emitterComponent)]
        const receivers = [create(receiverComponent), create(receiverComponent)]
        ObjectsConnector.registerEmitter("light", emitters[0], "clicked()")
        ObjectsConnector.registerReceiver("light", receivers[0], "toggle()")
        ObjectsConnector.registerReceiver("light", receivers[1], "toggle()")
        ObjectsConnector.registerEmitter("light", emitters[1], "clicked()")
        emitters[0].clicked()
        compare(receivers.map(receiver => receiver.toggled), [1, 1])
        emitters[1].clicked()
        compare(receivers.map(receiver => receiver.toggled), [2, 2])
    }

    function test_namesAreCaseSensitive() {
        const emitter = create(emitterComponent)
        const receiver = create(receiverComponent)
        ObjectsConnector.registerEmitter("light", emitter, "clicked()")
        ObjectsConnector.registerReceiver("Light", receiver, "toggle()")
        emitter.clicked()
        compare(receiver.toggled, 0)
    }

    function test_doesNotConnectAnObjectToItself() {
        const both = create(emitterAndReceiverComponent)
        const receiver = create(receiverComponent)
        ObjectsConnector.registerEmitter("light", both, "clicked()")
        ObjectsConnector.registerReceiver("light", both, "toggle()")
        ObjectsConnector.registerReceiver("light", receiver, "toggle()")
        both.clicked()
        compare(both.toggled, 0)
        compare(receiver.toggled, 1)
    }

    function test_unregisters_data() {
        return [
            { tag: "emitter", emitter: true, signature: "clicked()" },
            { tag: "emitter, with the code digit", emitter: true, signature: "2clicked()" },
            { tag: "receiver", emitter: false, signature: "toggle()" },
            { tag: "receiver, with the code digit", emitter: false, signature: "1toggle()" },
        ]
    }

    function test_unregisters(data) {
        const emitter = create(emitterComponent)
        const receiver = create(receiverComponent)
        ObjectsConnector.registerEmitter("light", emitter, "clicked()")
        ObjectsConnector.registerReceiver("light", receiver, "toggle()")
        if (data.emitter) {
            ObjectsConnector.unregisterEmitter("light", emitter, data.signature)
        } else {
            ObjectsConnector.unregisterReceiver("light", receiver, data.signature)
        }
        emitter.clicked()
        compare(receiver.toggled, 0)

        // Only one of `emitter` and `receiver` was unregistered. The other object must still be connected to the new
        // objects.
        const newEmitter = create(emitterComponent)
        const newReceiver = create(receiverComponent)
        ObjectsConnector.registerEmitter("light", newEmitter, "clicked()")
        ObjectsConnector.registerReceiver("light", newReceiver, "toggle()")
        emitter.clicked()
        compare(newReceiver.toggled, data.emitter ? 0 : 1)
        newEmitter.clicked()
        compare(receiver.toggled, data.emitter ? 1 : 0)
    }

    function test_removesDestroyedObjects() {
        const emitter = create(emitterComponent)
        const receiver = receiverComponent.createObject(testCase)
        ObjectsConnector.registerReceiver("light", receiver, "toggle()")
        receiver.destroy()
        deliverQueuedSignals()
        ObjectsConnector.registerEmitter("light", emitter, "clicked()")
        emitter.clicked()
    }

    function test_passesArguments_data() {
        return [
            { tag: "int, to C++", signal: "moved(int)", component: valueComponent, slot: "setValue(int)",
              emit: emitter => emitter.moved(7), received: receiver => receiver.value, expected: 7 },
            { tag: "var, to QML", signal: "chosen(QVariant)", component: receiverComponent, slot: "show(QVariant)",
              emit: emitter => emitter.chosen("red"), received: receiver => receiver.shown, expected: "red" },
            { tag: "int, to QML", signal: "moved(int)", component: receiverComponent, slot: "showNumber(int)",
              emit: emitter => emitter.moved(7), received: receiver => receiver.shown, expected: 7 },
            { tag: "dropped", signal: "moved(int)", component: receiverComponent, slot: "toggle()",
              emit: emitter => emitter.moved(7), received: receiver => receiver.toggled, expected: 1 },
        ]
    }

    function test_passesArguments(data) {
        const emitter = create(emitterComponent)
        const receiver = create(data.component)
        ObjectsConnector.registerEmitter("value", emitter, data.signal)
        ObjectsConnector.registerReceiver("value", receiver, data.slot)
        data.emit(emitter)
        compare(data.received(receiver), data.expected)
    }

    function test_connectsCppObjects_data() {
        return [
            { tag: "emitter first", emitterFirst: true, queued: false },
            { tag: "receiver first", emitterFirst: false, queued: false },
            { tag: "emitter first, queued", emitterFirst: true, queued: true },
            { tag: "receiver first, queued", emitterFirst: false, queued: true },
        ]
    }

    function test_connectsCppObjects(data) {
        const emitter = create(valueComponent)
        const receiver = create(valueComponent)
        if (data.emitterFirst) {
            ObjectsConnector.registerEmitter("volume", emitter, "valueChanged(int)")
            ObjectsConnector.registerReceiver("volume", receiver, "setValue(int)", data.queued)
        } else {
            ObjectsConnector.registerReceiver("volume", receiver, "setValue(int)")
            ObjectsConnector.registerEmitter("volume", emitter, "valueChanged(int)", data.queued)
        }
        emitter.value = 5
        compare(receiver.value, data.queued ? 0 : 5)
        deliverQueuedSignals()
        compare(receiver.value, 5)

        ObjectsConnector.unregisterEmitter("volume", emitter, "valueChanged(int)")
        emitter.value = 6
        deliverQueuedSignals()
        compare(receiver.value, 5)
    }

    function test_sharesTheRegistryWithCpp() {
        const emitter = create(valueComponent)
        const receiver = create(receiverComponent)
        emitter.registerAsEmitter("volume")
        ObjectsConnector.registerReceiver("volume", receiver, "toggle()")
        emitter.value = 3
        compare(receiver.toggled, 1)
    }

    function test_warnsAboutMismatches_data() {
        return [
            { tag: "unknown signal", signal: "pressed()", slot: "toggle()",
              warning: /^QObject::connect: No such signal \S+::pressed\(\)/ },
            { tag: "unknown slot", signal: "clicked()", slot: "switchOn()",
              warning: /^QObject::connect: No such slot \S+::switchOn\(\)/ },
            { tag: "other arguments", signal: "moved(int)", slot: "show(QVariant)",
              warning: /^QObject::connect: Incompatible sender\/receiver arguments/ },
        ]
    }

    function test_warnsAboutMismatches(data) {
        ObjectsConnector.registerEmitter("light", create(emitterComponent), data.signal)
        ObjectsConnector.registerReceiver("light", create(receiverComponent), data.slot)
        verify(data.warning.test(Warnings.take()))
    }

    function test_logsNullObjects() {
        ObjectsConnector.registerEmitter("light", null, "clicked()")
        compare(Warnings.take(), 'The sender under "light" is null')
        ObjectsConnector.unregisterReceiver("light", null, "toggle()")
        compare(Warnings.take(), 'The receiver under "light" is null')
    }

    function test_isASingleton() {
        let message = ""
        try {
            Qt.createQmlObject("import Zelkor.Util 1.0; ObjectsConnector {}", testCase)
        } catch (error) {
            message = error.qmlErrors[0].message
        }
        compare(message, "Element is not creatable.")
    }

    function test_exposesItsOperationsOnly() {
        for (const operation of ["registerEmitter", "registerReceiver", "unregisterEmitter", "unregisterReceiver"]) {
            compare(typeof ObjectsConnector[operation], "function", operation)
        }
        compare(ObjectsConnector.registerMetaType, undefined)
    }
}
