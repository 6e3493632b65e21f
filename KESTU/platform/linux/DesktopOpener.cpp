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

template<typename Object>
struct ObjectRelease {
    void operator()(Object* object) const { g_object_unref(object); }
};

gboolean launch(const QUrl& address, GAppInfo* program, GError** error) {
    const std::unique_ptr<GAppLaunchContext, ObjectRelease<GAppLaunchContext>> context{
        g_app_launch_context_new()};
    for (const QByteArray& variable : ownEnvironment()) {
        g_app_launch_context_unsetenv(context.get(), variable.constData());
    }
    QByteArray text = address.toEncoded();
    if (!program) {
        return g_app_info_launch_default_for_uri(text.constData(), context.get(), error);
    }
    GList list{.data = text.data(), .next = nullptr, .prev = nullptr};
    return g_app_info_launch_uris(program, &list, context.get(), error);
}

/// With `program`, or with the one that the desktop has set for such an address.
void open(const QUrl& address, const QString& failure, GAppInfo* program = nullptr) {
    GError* raised = nullptr;
    if (launch(address, program, &raised) != FALSE) {
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
    open(QUrl::fromLocalFile(folder.absoluteFilePath()), failure);
}

void DesktopOpener::openAddress(const QUrl& address) {
    const QString failure = QStringLiteral("Web ページを開けませんでした：");
    const bool isWeb = address.scheme() == u"http" || address.scheme() == u"https";
    if (!isWeb || address.host().isEmpty()) {
        throw PlatformError(failure +
                            QStringLiteral("Web アドレスではありません（%1）").arg(address.toString()));
    }
    open(address, failure);
}

void DesktopOpener::openPage(const QString& path) {
    const QString failure = QStringLiteral("ヘルプを開けませんでした：");
    const QFileInfo page(path);
    if (!page.isFile()) {
        throw PlatformError(failure + QStringLiteral("ページが見つかりません（%1）").arg(path));
    }
    // An editor may have been set for files of this kind.
    const std::unique_ptr<GAppInfo, ObjectRelease<GAppInfo>> browser{
        g_app_info_get_default_for_uri_scheme("http")};
    open(QUrl::fromLocalFile(page.absoluteFilePath()), failure, browser.get());
}

} // namespace kestu
