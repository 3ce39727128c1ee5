<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name>QObject</name>
    <message>
        <source>%1 TB</source>
        <translation>%1 TB</translation>
    </message>
    <message>
        <source>%1 GB</source>
        <translation>%1 GB</translation>
    </message>
    <message>
        <source>%1 MB</source>
        <translation>%1 MB</translation>
    </message>
    <message>
        <source>%1 KB</source>
        <translation>%1 KB</translation>
    </message>
    <message>
        <source>%1 B</source>
        <translation>%1 B</translation>
    </message>
    <message>
        <source>TB</source>
        <translation>TB</translation>
    </message>
    <message>
        <source>GB</source>
        <translation>GB</translation>
    </message>
    <message>
        <source>MB</source>
        <translation>MB</translation>
    </message>
    <message>
        <source>KB</source>
        <translation>KB</translation>
    </message>
    <message>
        <source>%1 Kbps</source>
        <translation>%1 kbit/s</translation>
    </message>
    <message>
        <source>%1 Hz</source>
        <translation>%1 Hz</translation>
    </message>
    <message>
        <source>Destination folder path cannot be empty</source>
        <translation>Der Pfad des Zielordners darf nicht leer sein</translation>
    </message>
    <message>
        <source>Destination folder path must be absolute</source>
        <translation>Der Pfad des Zielordners muss absolut sein</translation>
    </message>
    <message>
        <source>Can&apos;t access the specified destination folder</source>
        <translation>Auf den angegebenen Zielordner kann nicht zugegriffen werden</translation>
    </message>
    <message>
        <source>Last letter in folder name mustn&apos;t be space</source>
        <translation>Ein Ordnername darf nicht mit einem Leerzeichen enden</translation>
    </message>
    <message>
        <source>The specified destination is not available</source>
        <translation>Das angegebene Ziel ist nicht verfügbar</translation>
    </message>
</context>
<context>
    <name>ValidationInputDialog</name>
    <message>
        <source>Input string:</source>
        <translation>Eingabe:</translation>
    </message>
</context>
<context>
    <name>Zelkor::Util::AlertBox</name>
    <message>
        <source>Information</source>
        <translation>Information</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>Fehler</translation>
    </message>
</context>
</TS>
