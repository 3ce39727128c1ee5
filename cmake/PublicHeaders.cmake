# The public headers, as applications include them. The install, the self-containment test and the documentation are
# driven by this one list.
set(ZQTUTIL_PUBLIC_HEADERS
    Base/AddStack.h
    Base/CallStack.h
    Base/EventHandlerList.h
    Base/IoPath.h
    Base/Version.h
    Util/AsyncService.h
    Util/ByteArrayUtils.h
    Util/ExclusiveClient.h
    Util/ExclusiveService.h
    Util/Export.h
    Util/FileUtils.h
    Util/FunctorExecutionForwarder.h
    Util/LambdaQt4.h
    Util/LambdaQt4WithIntParameter.h
    Util/LinksUtils.h
    Util/Model/SimpleModel/ISimpleModelObserver.h
    Util/Model/SimpleModel/SimpleModel.h
    Util/ObjectsConnector.h
    Util/OsUtils.h
    Util/QTimeUtils.h
    Util/QtLogHandler.h
    Util/StdStreams.h
    Util/StringUtils.h
    Util/TemporaryDir.h
    Util/UndoHandlerStack.h
    Util/UnitsAndMeasures.h
    Util/ValidatorFactory.h
    Util/VersionUtils.h)

# Made by the build.
set(ZQTUTIL_GENERATED_HEADERS
    Base/Export.h)
