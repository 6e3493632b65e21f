// SPDX-License-Identifier: GPL-3.0-or-later
#include <gio/gio.h>

#include "platform/linux/DesktopOpener.h"

#include "platform/PlatformError.h"
#include "platform/linux/ReaderSwitch.h"

#include <QFileInfo>

#include <memory>

namespace kestu {
namespace {

struct ErrorRelease {
    void operator()(GError* error) const { g_error_free(error); }
};

struct ContextRelease {
    void operator()(GAppLaunchContext* context) const { g_object_unref(context); }
};

void launch(const QUrl& address, const QString& failure) {
    const std::unique_ptr<GAppLaunchContext, ContextRelease> context{g_app_launch_context_new()};
    for (const QByteArray& variable : ownEnvironment()) {
        g_app_launch_context_unsetenv(context.get(), variable.constData());
    }
    GError* raised = nullptr;
    if (g_app_info_launch_default_for_uri(address.toEncoded().constData(), context.get(), &raised) != FALSE) {
        return;
    }
    const std::unique_ptr<GError, ErrorRelease> error{raised};
    const bool hasNoProgram = g_error_matches(raised, G_IO_ERROR, G_IO_ERROR_NOT_SUPPORTED) != FALSE;
    throw PlatformError(failure + (hasNoProgram ? QStringLiteral("対応するアプリケーションがありません")
                                                : QString::fromUtf8(raised->message)));
}

} // namespace

void DesktopOpener::openFolder(const QString& path) {
    const QString failure = QStringLiteral("フォルダを開けませんでした：");
    const QFileInfo folder(path);
    if (!folder.isDir()) {
        throw PlatformError(failure + QStringLiteral("フォルダが見つかりません（%1）").arg(path));
    }
    launch(QUrl::fromLocalFile(folder.absoluteFilePath()), failure);
}

void DesktopOpener::openAddress(const QUrl& address) {
    const QString failure = QStringLiteral("Web ページを開けませんでした：");
    const bool isWeb = address.scheme() == u"http" || address.scheme() == u"https";
    if (!isWeb || address.host().isEmpty()) {
        throw PlatformError(failure +
                            QStringLiteral("Web アドレスではありません（%1）").arg(address.toString()));
    }
    launch(address, failure);
}

} // namespace kestu
