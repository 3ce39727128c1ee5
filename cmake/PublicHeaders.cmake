# The public headers, as applications include them. The install, the self-containment test and the documentation are
# driven by this one list.
set(ZQTUTIL_PUBLIC_HEADERS
    Base/AddStack.h
    Base/CallStack.h
    Base/EventHandlerList.h
    Base/ILinksOpener.h
    Base/IoPath.h
    Base/Version.h
    WidgetKit/Layouts.h
    WidgetKit/WidgetUtils.h
    Util/AlertBox.h
    Util/AsyncService.h
    Util/ByteArrayUtils.h
    Util/ExclusiveClient.h
    Util/ExclusiveService.h
    Util/Export.h
    Util/FileUtils.h
    Util/FixWidgetStyle.h
    Util/FontDatabase.h
    Util/FunctorExecutionForwarder.h
    Util/GlobalCoordinates.h
    Util/HoverGroup.h
    Util/LambdaQt4.h
    Util/LambdaQt4WithIntParameter.h
    Util/LinksUtils.h
    Util/Model/SimpleModel/ISimpleModelObserver.h
    Util/Model/SimpleModel/SimpleModel.h
    Util/ObjectsConnector.h
    Util/OsUtils.h
    Util/PropertyTimeSwitcher.h
    Util/QmlWindowFocusWorkaround.h
    Util/QTimeUtils.h
    Util/QtLogHandler.h
    Util/SpontaneousDialog.h
    Util/StdStreams.h
    Util/StringUtils.h
    Util/StyledPalette.h
    Util/StyleUtils.h
    Util/TemporaryDir.h
    Util/TimeUpdater.h
    Util/UndoHandlerStack.h
    Util/UnitsAndMeasures.h
    Util/ValidationInputDialog.h
    Util/ValidatorFactory.h
    Util/VersionUtils.h
    Util/WindowUtils.h)

if(ZQTUTIL_PLATFORM STREQUAL mac)
    list(APPEND ZQTUTIL_PUBLIC_HEADERS
        Base/SystemVersion.h
        Util/AutoLauncher.h
        Util/MediaUtils.h)
endif()

# Made by the build.
set(ZQTUTIL_GENERATED_HEADERS
    Base/Export.h)
