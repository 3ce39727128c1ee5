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
    <message>
        <source>The folder &quot;%1&quot; cannot be opened: %2</source>
        <translation>Der Ordner &quot;%1&quot; kann nicht geöffnet werden: %2</translation>
    </message>
    <message>
        <source>The path &quot;%1&quot; must not contain &quot;..&quot;.</source>
        <translation>Der Pfad &quot;%1&quot; darf &quot;..&quot; nicht enthalten.</translation>
    </message>
    <message>
        <source>The folder &quot;%1&quot; cannot be created: %2</source>
        <translation>Der Ordner &quot;%1&quot; kann nicht angelegt werden: %2</translation>
    </message>
    <message>
        <source>The link &quot;%1&quot; does not belong to the current user.</source>
        <translation>Die Verknüpfung &quot;%1&quot; gehört nicht dem aktuellen Benutzer.</translation>
    </message>
    <message>
        <source>The folder &quot;%1&quot; is missing.</source>
        <translation>Der Ordner &quot;%1&quot; fehlt.</translation>
    </message>
    <message>
        <source>The folder &quot;%1&quot; does not belong to the current user.</source>
        <translation>Der Ordner &quot;%1&quot; gehört nicht dem aktuellen Benutzer.</translation>
    </message>
    <message>
        <source>The temporary folder of the system is missing. The environment variable TMPDIR can contain its path.</source>
        <translation>Der temporäre Ordner des Systems fehlt. Die Umgebungsvariable TMPDIR kann seinen Pfad enthalten.</translation>
    </message>
    <message>
        <source>Another user has replaced the folder &quot;%1&quot;.</source>
        <translation>Ein anderer Benutzer hat den Ordner &quot;%1&quot; ersetzt.</translation>
    </message>
    <message>
        <source>The permissions of the folder &quot;%1&quot; cannot be changed: %2</source>
        <translation>Die Zugriffsrechte des Ordners &quot;%1&quot; können nicht geändert werden: %2</translation>
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
