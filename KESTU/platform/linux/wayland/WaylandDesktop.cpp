// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/wayland/WaylandDesktop.h"

#include "base/WindowRole.h"

#include <QCoreApplication>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <utility>

namespace kestu {
namespace {

bool canTell(const WindowSource& source) {
    const Ability::Kind kind = source.ability().kind;
    return kind == Ability::Kind::yes || kind == Ability::Kind::partly;
}

std::optional<Seconds> age(std::optional<Moment> since) {
    return since ? std::optional<Seconds>(Moment::clock::now() - *since) : std::nullopt;
}

/// By its title, which comes with the window: which of our windows has the focus the compositor tells us
/// elsewhere, and at another moment.
bool isOwnPanel(const SeenWindow& window) {
    const bool isOurs = window.facts.processId > 0
                            ? window.facts.processId == QCoreApplication::applicationPid()
                            : window.facts.wmClass == applicationId;
    return isOurs && window.title == statusItemTitle;
}

} // namespace

WaylandDesktop::WaylandDesktop(std::vector<std::unique_ptr<WindowSource>> sources,
                               std::function<bool()> isHeld, ApplicationIds::EntrySource entries)
    : m_sources(std::move(sources))
    , m_isHeld(std::move(isHeld))
    , m_ids(std::move(entries)) {
    for (const auto& source : m_sources) {
        connect(source.get(), &WindowSource::abilityChanged, this, [this] {
            choose();
            Q_EMIT abilitiesChanged();
        });
        connect(source.get(), &WindowSource::frontChanged, this, [this, told = source.get()] {
            if (told == m_source) {
                Q_EMIT activated();
            }
        });
        connect(source.get(), &WindowSource::titleChanged, this, [this, told = source.get()] {
            if (told == m_source) {
                Q_EMIT titleChanged();
            }
        });
    }
    choose();
}

void WaylandDesktop::choose() {
    WindowSource* chosen = nullptr;
    for (const auto& source : m_sources) {
        source->setNeeded(!chosen);
        if (!chosen && canTell(*source)) {
            chosen = source.get();
        }
    }
    if (std::exchange(m_source, chosen) != chosen) {
        Q_EMIT activated();
    }
}

Ability WaylandDesktop::windows() const {
    Ability told = m_source ? m_source->ability() : Ability{};
    if (told.kind == Ability::Kind::yes) {
        return told;
    }
    // A better source that knows what would help goes before the one that can tell of some windows.
    const auto helpful =
        std::ranges::find_if(m_sources, [](const auto& source) { return !source->ability().note.isEmpty(); });
    if (helpful == m_sources.end() || helpful->get() == m_source) {
        return told;
    }
    Ability better = (*helpful)->ability();
    if (!m_source) {
        return better;
    }
    return {.kind = told.kind,
            .note = better.note + QStringLiteral("それまでは、") + told.note,
            .mayBeRequested = better.mayBeRequested || told.mayBeRequested};
}

Ability WaylandDesktop::titles() const {
    return m_source ? m_source->titles() : windows();
}

void WaylandDesktop::request() {
    for (const auto& source : m_sources) {
        if (source->ability().kind != Ability::Kind::yes) {
            source->request();
        }
    }
}

QString WaylandDesktop::whyUnseen() {
    if (m_source) {
        return {};
    }
    const QString note = windows().note;
    return note.isEmpty()
               ? QStringLiteral("このデスクトップは手前のウィンドウを知らせないため、記録されません。")
               : note;
}

std::optional<FrontmostApplication> WaylandDesktop::frontmostApplication() {
    m_front = m_source && !m_isHeld() ? m_source->front() : std::nullopt;
    if (!m_front) {
        return std::nullopt;
    }
    const ApplicationIdentity identity = m_ids.of(m_front->facts);
    const std::int64_t processId = m_front->facts.processId;
    const bool isAlive = processId > 0 && (::kill(static_cast<pid_t>(processId), 0) == 0 || errno == EPERM);
    if (!identity.bundleId && !isAlive) {
        return std::nullopt; // nothing to call it by
    }
    return FrontmostApplication{.bundleId = identity.bundleId,
                                .localizedName = identity.localizedName,
                                .processId = processId,
                                .inFrontFor = age(m_front->since),
                                .titledFor = age(m_front->titledSince),
                                .isFullscreen = m_front->isFullscreen,
                                .isOwnPanel = isOwnPanel(*m_front)};
}

QString WaylandDesktop::focusedWindowTitle(std::int64_t processId) {
    return m_front && m_front->facts.processId == processId ? m_front->title : QString();
}

} // namespace kestu
