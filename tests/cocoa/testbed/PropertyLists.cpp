// Provides XML property lists as a QSettings format. On macOS, this is the native format of QSettings.

#include <Util/Platforms/mac/SystemSettings.h>

#include <QtCore/QIODevice>
#include <QtCore/QStringList>
#include <QtCore/QVariant>
#include <QtCore/QXmlStreamReader>
#include <QtCore/QXmlStreamWriter>

namespace
{

QVariant ReadValue(QXmlStreamReader& xml)
{
    auto const type = xml.name().toString();
    if (type == QLatin1String("true") || type == QLatin1String("false")) {
        xml.skipCurrentElement();
        return type == QLatin1String("true");
    }
    if (type == QLatin1String("array")) {
        QStringList texts;
        while (xml.readNextStartElement()) {
            texts += ReadValue(xml).toString();
        }
        return texts;
    }
    return xml.readElementText();
}

bool Read(QIODevice& device, QSettings::SettingsMap& map)
{
    QXmlStreamReader xml(&device);
    xml.readNextStartElement(); // enters the element "plist"
    xml.readNextStartElement(); // enters the element "dict"
    while (xml.readNextStartElement()) {
        QString const key = xml.readElementText();
        if (xml.readNextStartElement()) {
            map.insert(key, ReadValue(xml));
        }
    }
    return !xml.hasError();
}

void WriteValue(QXmlStreamWriter& xml, QVariant const& value)
{
    if (value.type() == QVariant::Bool) {
        xml.writeEmptyElement(value.toBool() ? QStringLiteral("true") : QStringLiteral("false"));
        return;
    }
    if (value.type() != QVariant::StringList) {
        xml.writeTextElement(QStringLiteral("string"), value.toString());
        return;
    }
    xml.writeStartElement(QStringLiteral("array"));
    auto const texts = value.toStringList();
    for (QString const& text : texts) {
        xml.writeTextElement(QStringLiteral("string"), text);
    }
    xml.writeEndElement();
}

bool Write(QIODevice& device, QSettings::SettingsMap const& map)
{
    QXmlStreamWriter xml(&device);
    xml.setAutoFormatting(true);
    xml.writeStartDocument();
    xml.writeDTD(QStringLiteral("<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                                "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">"));
    xml.writeStartElement(QStringLiteral("plist"));
    xml.writeAttribute(QStringLiteral("version"), QStringLiteral("1.0"));
    xml.writeStartElement(QStringLiteral("dict"));
    for (auto entry = map.begin(); entry != map.end(); ++entry) {
        xml.writeTextElement(QStringLiteral("key"), entry.key());
        WriteValue(xml, entry.value());
    }
    xml.writeEndDocument();
    return !xml.hasError();
}

} // namespace

QSettings::Format Zelkor::Util::PropertyListFormat()
{
    static QSettings::Format const format = QSettings::registerFormat(QStringLiteral("plist"), Read, Write);
    return format;
}
