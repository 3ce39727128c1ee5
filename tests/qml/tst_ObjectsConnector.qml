import QtQml 2.15
import Zelkor.Testing 1.0
import Zelkor.Util 1.0

ModuleTestCase {
    id: testCase
    name: "ObjectsConnector"

    Component {
        id: button

        QtObject {
            signal clicked()
            signal moved(int value)
            signal chosen(var value)
        }
    }

    Component {
        id: lamp

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
        id: relay

        QtObject {
            property int toggled: 0

            signal clicked()

            function toggle() {
                ++toggled
            }
        }
    }

    Component {
        id: dial

        Dial {}
    }

    function make(component) {
        return createTemporaryObject(component, testCase)
    }

    // Delivers what is queued.
    function deliver() {
        wait(0)
    }

    function test_connectsWhicheverComesFirst_data() {
        return [
            { tag: "receiver first", receiverFirst: true, signal: "clicked()", slot: "toggle()" },
            { tag: "emitter first", receiverFirst: false, signal: "clicked()", slot: "toggle()" },
            { tag: "receiver first, with code digits", receiverFirst: true, signal: "2clicked()", slot: "1toggle()" },
            { tag: "emitter first, with code digits", receiverFirst: false, signal: "2clicked()", slot: "1toggle()" },
            { tag: "code digit of the signal only", receiverFirst: true, signal: "2clicked()", slot: "toggle()" },
            { tag: "code digit of the slot only", receiverFirst: false, signal: "clicked()", slot: "1toggle()" },
        ]
    }

    function test_connectsWhicheverComesFirst(data) {
        const emitter = make(button)
        const receiver = make(lamp)
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

    function test_secondSideDecidesWhatIsQueued_data() {
        return [
            { tag: "nobody asks", emitterFirst: true, ofEmitter: false, ofReceiver: false, queued: false },
            { tag: "emitter, first", emitterFirst: true, ofEmitter: true, ofReceiver: false, queued: false },
            { tag: "receiver, second", emitterFirst: true, ofEmitter: false, ofReceiver: true, queued: true },
            { tag: "receiver, first", emitterFirst: false, ofEmitter: false, ofReceiver: true, queued: false },
            { tag: "emitter, second", emitterFirst: false, ofEmitter: true, ofReceiver: false, queued: true },
            { tag: "both ask", emitterFirst: true, ofEmitter: true, ofReceiver: true, queued: true },
        ]
    }

    function test_secondSideDecidesWhatIsQueued(data) {
        const emitter = make(button)
        const receiver = make(lamp)
        const registerEmitter = () =>
            ObjectsConnector.registerEmitter("light", emitter, "clicked()", data.ofEmitter)
        const registerReceiver = () =>
            ObjectsConnector.registerReceiver("light", receiver, "toggle()", data.ofReceiver)
        if (data.emitterFirst) {
            registerEmitter()
            registerReceiver()
        } else {
            registerReceiver()
            registerEmitter()
        }
        emitter.clicked()
        compare(receiver.toggled, data.queued ? 0 : 1)
        deliver()
        compare(receiver.toggled, 1)
    }

    function test_connectsEveryEmitterToEveryReceiver() {
        const emitters = [make(button), make(button)]
        const receivers = [make(lamp), make(lamp)]
        ObjectsConnector.registerEmitter("light", emitters[0], "clicked()")
        ObjectsConnector.registerReceiver("light", receivers[0], "toggle()")
        ObjectsConnector.registerReceiver("light", receivers[1], "toggle()")
        ObjectsConnector.registerEmitter("light", emitters[1], "clicked()")
        emitters[0].clicked()
        compare(receivers.map(receiver => receiver.toggled), [1, 1])
        emitters[1].clicked()
        compare(receivers.map(receiver => receiver.toggled), [2, 2])
    }

    function test_namesAreApart() {
        const emitter = make(button)
        const receiver = make(lamp)
        ObjectsConnector.registerEmitter("light", emitter, "clicked()")
        ObjectsConnector.registerReceiver("Light", receiver, "toggle()")
        emitter.clicked()
        compare(receiver.toggled, 0)
    }

    function test_connectsNoObjectToItself() {
        const both = make(relay)
        const receiver = make(lamp)
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
        const emitter = make(button)
        const receiver = make(lamp)
        ObjectsConnector.registerEmitter("light", emitter, "clicked()")
        ObjectsConnector.registerReceiver("light", receiver, "toggle()")
        if (data.emitter) {
            ObjectsConnector.unregisterEmitter("light", emitter, data.signature)
        } else {
            ObjectsConnector.unregisterReceiver("light", receiver, data.signature)
        }
        emitter.clicked()
        compare(receiver.toggled, 0)

        // The other side is still there, this one is not.
        const newEmitter = make(button)
        const newReceiver = make(lamp)
        ObjectsConnector.registerEmitter("light", newEmitter, "clicked()")
        ObjectsConnector.registerReceiver("light", newReceiver, "toggle()")
        emitter.clicked()
        compare(newReceiver.toggled, data.emitter ? 0 : 1)
        newEmitter.clicked()
        compare(receiver.toggled, data.emitter ? 1 : 0)
    }

    function test_forgetsWhatIsDestroyed() {
        const emitter = make(button)
        const receiver = lamp.createObject(testCase)
        ObjectsConnector.registerReceiver("light", receiver, "toggle()")
        receiver.destroy()
        deliver()
        ObjectsConnector.registerEmitter("light", emitter, "clicked()")
        emitter.clicked()
    }

    function test_carriesArguments_data() {
        return [
            { tag: "int, to C++", signal: "moved(int)", component: dial, slot: "setValue(int)",
              emit: emitter => emitter.moved(7), received: receiver => receiver.value, expected: 7 },
            { tag: "var, to QML", signal: "chosen(QVariant)", component: lamp, slot: "show(QVariant)",
              emit: emitter => emitter.chosen("red"), received: receiver => receiver.shown, expected: "red" },
            { tag: "int, to QML", signal: "moved(int)", component: lamp, slot: "showNumber(int)",
              emit: emitter => emitter.moved(7), received: receiver => receiver.shown, expected: 7 },
            { tag: "dropped", signal: "moved(int)", component: lamp, slot: "toggle()",
              emit: emitter => emitter.moved(7), received: receiver => receiver.toggled, expected: 1 },
        ]
    }

    function test_carriesArguments(data) {
        const emitter = make(button)
        const receiver = make(data.component)
        ObjectsConnector.registerEmitter("value", emitter, data.signal)
        ObjectsConnector.registerReceiver("value", receiver, data.slot)
        data.emit(emitter)
        compare(data.received(receiver), data.expected)
    }

    function test_connectsObjectsOfCpp_data() {
        return [
            { tag: "emitter first", emitterFirst: true, queued: false },
            { tag: "receiver first", emitterFirst: false, queued: false },
            { tag: "emitter first, queued", emitterFirst: true, queued: true },
            { tag: "receiver first, queued", emitterFirst: false, queued: true },
        ]
    }

    function test_connectsObjectsOfCpp(data) {
        const emitter = make(dial)
        const receiver = make(dial)
        if (data.emitterFirst) {
            ObjectsConnector.registerEmitter("volume", emitter, "valueChanged(int)")
            ObjectsConnector.registerReceiver("volume", receiver, "setValue(int)", data.queued)
        } else {
            ObjectsConnector.registerReceiver("volume", receiver, "setValue(int)")
            ObjectsConnector.registerEmitter("volume", emitter, "valueChanged(int)", data.queued)
        }
        emitter.value = 5
        compare(receiver.value, data.queued ? 0 : 5)
        deliver()
        compare(receiver.value, 5)

        ObjectsConnector.unregisterEmitter("volume", emitter, "valueChanged(int)")
        emitter.value = 6
        deliver()
        compare(receiver.value, 5)
    }

    function test_sharesTheRegistryWithCpp() {
        const emitter = make(dial)
        const receiver = make(lamp)
        emitter.emitUnder("volume")
        ObjectsConnector.registerReceiver("volume", receiver, "toggle()")
        emitter.value = 3
        compare(receiver.toggled, 1)
    }

    function test_reportsWhatDoesNotFit_data() {
        return [
            { tag: "unknown signal", signal: "pressed()", slot: "toggle()",
              complaint: /^QObject::connect: No such signal \S+::pressed\(\)/ },
            { tag: "unknown slot", signal: "clicked()", slot: "switchOn()",
              complaint: /^QObject::connect: No such slot \S+::switchOn\(\)/ },
            { tag: "other arguments", signal: "moved(int)", slot: "show(QVariant)",
              complaint: /^QObject::connect: Incompatible sender\/receiver arguments/ },
        ]
    }

    function test_reportsWhatDoesNotFit(data) {
        ObjectsConnector.registerEmitter("light", make(button), data.signal)
        ObjectsConnector.registerReceiver("light", make(lamp), data.slot)
        verify(data.complaint.test(Complaints.take()))
    }

    function test_logsNull() {
        ObjectsConnector.registerEmitter("light", null, "clicked()")
        compare(Complaints.take(), 'The sender under "light" is null')
        ObjectsConnector.unregisterReceiver("light", null, "toggle()")
        compare(Complaints.take(), 'The receiver under "light" is null')
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

    function test_showsItsOperationsOnly() {
        for (const operation of ["registerEmitter", "registerReceiver", "unregisterEmitter", "unregisterReceiver"]) {
            compare(typeof ObjectsConnector[operation], "function", operation)
        }
        compare(ObjectsConnector.registerMetaType, undefined)
    }
}
