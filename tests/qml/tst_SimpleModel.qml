import QtQuick 2.15
import Zelkor.Testing 1.0
import Zelkor.Util 1.0

Item {
    id: window
    width: 200
    height: 120

    property SimpleModel items
    property var clicks: []

    ListView {
        id: view
        anchors.fill: parent
        model: window.items

        delegate: MouseArea {
            width: ListView.view.width
            height: 30

            property string uid: model.Uid
            property string title: Title
            property url iconPath: IconPath
            property alias icon: image
            property var roles: model
            property var writtenByClick: true

            onClicked: model.Click = writtenByClick

            Image {
                id: image
                source: IconPath
                cache: false // a cached image would outlive the window, and the texture of the image would leak
            }
        }
    }

    ClickObserver {
        id: first
        onItemClicked: uid => window.clicks.push("first:" + uid)
    }

    ClickObserver {
        id: second
        onItemClicked: uid => window.clicks.push("second:" + uid)
    }

    ModuleTestCase {
        name: "SimpleModel"

        function init() {
            show(["video_trim", "audio", "video_trim_ends"])
            clicks = []
        }

        function cleanupTestCase() {
            // The textures of destroyed images are freed when the next frame is rendered. grabImage() renders a frame.
            show([])
            wait(0)
            grabImage(view)
        }

        function noItem() {
            return items.index(-1, -1)
        }

        function show(uids) {
            const previous = items
            items = Models.create(uids, window)
            if (previous) {
                previous.destroy()
            }
            tryCompare(view, "count", uids.length)
            view.forceLayout()
        }

        function register(observer) {
            return items.setData(noItem(), observer.observer, SimpleModel.RegisterObserver)
        }

        function unregister(observer) {
            return items.setData(noItem(), observer.observer, SimpleModel.UnregisterObserver)
        }

        function rows(property) {
            return Array.from({ length: view.count }, (_, row) => view.itemAtIndex(row)[property])
        }

        function test_rolesHaveNumbers_data() {
            return [
                { tag: "Uid", role: SimpleModel.Uid, number: 257 },
                { tag: "Title", role: SimpleModel.Title, number: 258 },
                { tag: "IconPath", role: SimpleModel.IconPath, number: 259 },
                { tag: "Click", role: SimpleModel.Click, number: 260 },
                { tag: "RegisterObserver", role: SimpleModel.RegisterObserver, number: 261 },
                { tag: "UnregisterObserver", role: SimpleModel.UnregisterObserver, number: 262 },
            ]
        }

        function test_rolesHaveNumbers(data) {
            compare(data.role, data.number)
        }

        function test_isCreatableInCppOnly() {
            let message = ""
            try {
                Qt.createQmlObject("import Zelkor.Util 1.0; SimpleModel {}", window)
            } catch (error) {
                message = error.qmlErrors[0].message
            }
            compare(message, "A SimpleModel is made in C++, with its items")
        }

        function test_viewShowsItems() {
            compare(rows("uid"), ["video_trim", "audio", "video_trim_ends"])
            compare(rows("title"), ["Title of video_trim", "Title of audio", "Title of video_trim_ends"])
        }

        function test_viewOfAnEmptyModelIsEmpty() {
            show([])
            compare(view.count, 0)
            compare(view.itemAtIndex(0), null)
        }

        function test_iconPathsAreResourceUrls() {
            compare(rows("iconPath").map(String),
                    ["qrc:/icons/video/trim.png", "qrc:/icons/audio.png", "qrc:/icons/video/trim/ends.png"])
            compare(rows("icon").map(icon => icon.status), [Image.Ready, Image.Ready, Image.Ready])
            compare(rows("icon").map(icon => icon.sourceSize.width), [1, 2, 3])
        }

        function test_hasNoStandardRoles_data() {
            return ["display", "decoration", "edit", "toolTip", "statusTip", "whatsThis"].map(role => ({ tag: role }))
        }

        function test_hasNoStandardRoles(data) {
            const roles = view.itemAtIndex(0).roles
            verify("Uid" in roles)
            verify(!(data.tag in roles))
            compare(roles[data.tag], undefined)
        }

        function test_returnsDataByRole() {
            const index = items.index(1, 0)
            compare(items.data(index, SimpleModel.Uid), "audio")
            compare(items.data(index, SimpleModel.Title), "Title of audio")
            compare(items.data(index, SimpleModel.IconPath), "qrc:/icons/audio.png")
            compare(items.data(index, SimpleModel.Click), undefined)
            compare(items.data(index, Qt.DisplayRole), undefined)
        }

        function test_mouseClickReachesObserver() {
            verify(register(first))
            mouseClick(view.itemAtIndex(1))
            compare(clicks, ["first:audio"])
            mouseClick(view.itemAtIndex(2))
            compare(clicks, ["first:audio", "first:video_trim_ends"])
        }

        function test_writtenValueIsIgnored_data() {
            return [
                { tag: "false", value: false },
                { tag: "number", value: 0 },
                { tag: "text", value: "another" },
                { tag: "undefined", value: undefined },
                { tag: "null", value: null },
            ]
        }

        function test_writtenValueIsIgnored(data) {
            verify(register(first))
            const item = view.itemAtIndex(0)
            item.writtenByClick = data.value
            mouseClick(item)
            compare(clicks, ["first:video_trim"])
        }

        function test_clickDoesNotChangeData() {
            verify(register(first))
            mouseClick(view.itemAtIndex(0))
            compare(rows("title"), ["Title of video_trim", "Title of audio", "Title of video_trim_ends"])
            compare(view.itemAtIndex(0).roles.Click, undefined)
        }

        function test_acceptsClicksWithoutObserver() {
            mouseClick(view.itemAtIndex(0))
            verify(items.setData(items.index(0, 0), true, SimpleModel.Click))
            compare(clicks, [])
        }

        function test_notifiesObserversInOrderOfRegistration() {
            verify(register(second))
            verify(register(first))
            verify(register(second)) // has no effect: this observer is already registered
            mouseClick(view.itemAtIndex(0))
            compare(clicks, ["second:video_trim", "first:video_trim"])
        }

        function test_doesNotNotifyUnregisteredObservers() {
            verify(register(first))
            verify(register(second))
            verify(unregister(first))
            verify(unregister(first)) // has no effect: this observer is no longer registered
            mouseClick(view.itemAtIndex(0))
            compare(clicks, ["second:video_trim"])
            verify(unregister(second))
            mouseClick(view.itemAtIndex(0))
            compare(clicks, ["second:video_trim"])
        }

        function test_ignoresValuesThatAreNotObservers_data() {
            return [
                { tag: "undefined", value: undefined },
                { tag: "null", value: null },
                { tag: "text", value: "observer" },
                { tag: "another object", value: view },
            ]
        }

        function test_ignoresValuesThatAreNotObservers(data) {
            verify(items.setData(noItem(), data.value, SimpleModel.RegisterObserver))
            verify(items.setData(noItem(), data.value, SimpleModel.UnregisterObserver))
            mouseClick(view.itemAtIndex(0))
            compare(clicks, [])
        }

        function test_rejectsObserversForAnItem() {
            verify(!items.setData(items.index(0, 0), first.observer, SimpleModel.RegisterObserver))
            mouseClick(view.itemAtIndex(0))
            compare(clicks, [])

            verify(register(first))
            verify(!items.setData(items.index(0, 0), first.observer, SimpleModel.UnregisterObserver))
            mouseClick(view.itemAtIndex(0))
            compare(clicks, ["first:video_trim"])
        }

        function test_rejectsOtherWrites_data() {
            return [
                { tag: "uid of an item", index: () => items.index(0, 0), role: SimpleModel.Uid },
                { tag: "title of an item", index: () => items.index(0, 0), role: SimpleModel.Title },
                { tag: "edit role of an item", index: () => items.index(0, 0), role: Qt.EditRole },
                { tag: "click without an item", index: () => noItem(), role: SimpleModel.Click },
            ]
        }

        function test_rejectsOtherWrites(data) {
            verify(register(first))
            verify(!items.setData(data.index(), "another", data.role))
            compare(clicks, [])
            compare(rows("uid"), ["video_trim", "audio", "video_trim_ends"])
        }
    }
}
