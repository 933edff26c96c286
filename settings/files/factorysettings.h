// The settings that the factory delivers, and how those of a user live through a new delivery. Not installed.
#pragma once

#include <QByteArray>
#include <QString>

namespace settings {

// Where a phone keeps its settings: the factory's, which nobody changes, and on a handset the user's.
inline const QString kFactoryDirectory = QStringLiteral("/usr/setup/");
inline const QString kHandsetDirectory = QStringLiteral("/tyxlocal/download/appwrite/setup/");

// The user's file with the entries of the factory's that it has not got. Null when there is none to add.
QByteArray merged(const QByteArray &user, const QByteArray &factory);

}
