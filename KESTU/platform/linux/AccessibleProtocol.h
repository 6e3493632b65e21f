// SPDX-License-Identifier: GPL-3.0-or-later
//
// The spelling of the accessibility protocol: which message asks what, and how its reply is read. Nobody owns
// this; it knows no connection. A reply that is an error, or that is not of the expected form, reads as
// nothing: programs leave the bus and windows close between two questions.
#pragma once

#include <QDBusMessage>
#include <QList>
#include <QMap>
#include <QString>

#include <cstdint>
#include <optional>

namespace kestu {

/// An object of a program on the accessibility bus.
struct Accessible {
    QString service; // the program's unique name there
    QString path;
    bool operator==(const Accessible&) const = default;
};

namespace accessible {

/// The root of all programs, whose children are the programs' roots.
[[nodiscard]] Accessible registryRoot();

/// Kinds of events, as the registry calls them. As long as nobody listens for activation, Chromium does not
/// mark the active one of its windows.
inline const QString windowActivation = QStringLiteral("window:activate");
inline const QString windowDeactivation = QStringLiteral("window:deactivate");
inline const QString windowEnd = QStringLiteral("window:destroy");
inline const QString nameChange = QStringLiteral("object:property-change:accessible-name");

/// The interfaces of the signals that tell of them.
inline const QString windowEvents = QStringLiteral("org.a11y.atspi.Event.Window");
inline const QString objectEvents = QStringLiteral("org.a11y.atspi.Event.Object");

/// Asks the registry to have that kind of event announced by all programs.
[[nodiscard]] QDBusMessage listenFor(const QString& event);

/// Which connection is the registry now: a reply itself does not tell.
[[nodiscard]] QDBusMessage registryOwnerQuestion();
[[nodiscard]] QDBusMessage processIdQuestion(const QString& service);
[[nodiscard]] QDBusMessage childrenQuestion(const Accessible& object);
[[nodiscard]] QDBusMessage nameQuestion(const Accessible& object);
[[nodiscard]] QDBusMessage statesQuestion(const Accessible& object);
/// For the web page that shows inside `window`, without the frames of that page.
[[nodiscard]] QDBusMessage shownPageQuestion(const Accessible& window);
[[nodiscard]] QDBusMessage documentAttributesQuestion(const Accessible& document);

/// A unique name; empty while nobody owns the name that was asked for.
[[nodiscard]] QString readOwner(const QDBusMessage& reply);
[[nodiscard]] std::optional<std::int64_t> readProcessId(const QDBusMessage& reply);
/// For children and pages.
[[nodiscard]] QList<Accessible> readAccessibles(const QDBusMessage& reply);
[[nodiscard]] QString readName(const QDBusMessage& reply);
[[nodiscard]] bool readIsActive(const QDBusMessage& reply);
[[nodiscard]] QMap<QString, QString> readAttributes(const QDBusMessage& reply);

} // namespace accessible

} // namespace kestu
