#pragma once

// Temporary directories as another process makes them: it takes the steps that its arguments name, and tells what came
// of them in lines of JSON. The steps:
//
//   no application             goes on without a QCoreApplication
//   ordinary user              drops its privileges
//   name=, version=            names the application, and its version
//   temporary folder=          moves the system's temporary folder
//   make                       makes a directory, and tells of it
//   make on threads=           makes so many at once, each with a file "file", and tells of them
//   put file=                  makes a file in the last one
//   put locked folder=         makes a folder with a file in the last one that nobody may write in
//   remove                     removes the last one, and tells of it
//   await                      waits for Player::GoOn()

#include <QtCore/QCoreApplication>
#include <QtCore/QJsonObject>
#include <QtCore/QProcess>
#include <QtCore/QString>
#include <QtCore/QStringList>

namespace Zelkor::Testing
{

/// Takes the steps that the arguments of the other process (see IsPlay) name. Returns what the program is to return.
int TakeSteps(int argc, char** argv);

/// What the other process told of a directory.
struct Made
{
    bool valid;
    QString path;
    QString file; // the path of "file" in it
    QString error;
    bool isThere;
    QStringList complaints; // warnings and errors logged meanwhile
};

Made MadeFrom(QJsonObject const& facts);

/// This program as a process of its own that takes \a steps.
class Player
{
public:
    Player(QString const& temporaryFolder, QStringList const& steps,
           QString const& program = QCoreApplication::applicationFilePath(), QString const& currentFolder = QString());
    ~Player();
    Player(Player const&) = delete;
    Player& operator=(Player const&) = delete;

    /// The next thing it tells.
    QJsonObject Hear();
    Made HearMade();

    /// Ends its waiting.
    void GoOn();

    /// Waits for its good end, and returns what it wrote to standard error.
    QString End();

    void Kill();

private:
    QString Errors();

    QProcess process_;
};

} // namespace Zelkor::Testing
