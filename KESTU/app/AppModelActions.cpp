// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the user changes in the store.
#include "app/AppModel.h"

#include "base/Text.h"
#include "classify/Resolution.h"

namespace kestu {

// The one way of every write

/// Runs `body`; its failure is told in any case.
bool AppModel::attempt(const Write& body) {
    forgetFailures();
    std::optional<QString> failure;
    try {
        body(*m_repository);
    } catch (const DatabaseError& error) {
        failure = error.description();
    }
    report(Source::action, failure);
    return !failure;
}

/// Here the action's failure is still known, so that a read failing for the same cause does not hide it.
void AppModel::reloadAfterAttempt() {
    reload();
    report(Source::action, std::nullopt);
}

bool AppModel::write(const Write& body) {
    const bool isWritten = attempt(body);
    reloadAfterAttempt();
    return isWritten;
}

// Entries

double AppModel::automaticOverlap(Instant start, Instant end) const {
    if (!(end > start)) {
        return 0;
    }
    double seconds = 0;
    try {
        std::vector<Activity> activities = m_repository->activitiesOverlapping(start, end);
        // A correction first takes the entry away, and then replaces what was recorded under it, too.
        std::erase_if(activities, [this](const Activity& activity) {
            return m_manualDraft && m_manualDraft->editingId == activity.id;
        });
        for (const Activity& activity :
             clipped(counted(std::move(activities)), {.start = start, .end = end})) {
            seconds += activity.isManual ? 0 : lengthOf(activity.start, activity.end).count();
        }
    } catch (const DatabaseError&) {
        return 0; // only a hint beside the entry; saving it reports what is wrong
    }
    return seconds;
}

void AppModel::saveManualDraft(const ManualDraft& draft) {
    m_impactsFrom.reset();
    attempt([&](Repository& repository) { setSelectedActivityId(writeDraft(repository, draft)); });
    reloadAfterAttempt();
    restartSession();
    setManualDraft(std::nullopt); // last: `draft` may be this one
}

ActivityId AppModel::writeDraft(Repository& repository, const ManualDraft& draft) const {
    const ManualEntry entry{.start = draft.start,
                            .end = draft.end,
                            .title = trimmedBlanks(draft.title),
                            .projectId = draft.projectId,
                            .tagIds = draft.tagIds};
    return repository.database().transaction([&] {
        return draft.editingId ? repository.replaceManualEntry(*draft.editingId, entry)
                               : repository.insertManualEntry(entry);
    });
}

/// Recording goes on in a new row.
void AppModel::restartSession() {
    m_tracker.resetSession();
    // The tracker calls nobody when it finds nothing to record.
    assign(m_currentSample, m_tracker.current(), &AppModel::currentSampleChanged);
}

void AppModel::correctEntry(const Activity& shown) {
    Activity stored = shown;
    const bool isRead = attempt([&](Repository& repository) {
        for (const Activity& activity : repository.activitiesOverlapping(shown.start, shown.end)) {
            stored = activity.id == shown.id ? activity : stored;
        }
    });
    report(Source::action, std::nullopt);
    if (isRead) {
        setManualDraft(ManualDraft{.start = stored.start,
                                   .end = stored.end,
                                   .editingId = stored.id,
                                   .title = stored.title,
                                   .projectId = stored.projectId,
                                   .tagIds = stored.tagIds});
    }
}

void AppModel::deleteActivity(ActivityId id) {
    if (m_selectedActivityId == id) {
        setSelectedActivityId(std::nullopt);
    }
    m_impactsFrom.reset();
    const bool isDeleted = write([&](Repository& repository) { repository.deleteActivity(id); });
    if (isDeleted && m_tracker.openActivityId() == id) {
        restartSession(); // else what follows would be written into the deleted row
    }
}

void AppModel::assignProject(std::optional<ProjectId> projectId, std::span<const ActivityId> ids) {
    write([&](Repository& repository) {
        repository.database().transaction([&] { repository.setProject(ids, projectId); });
    });
}

void AppModel::setTag(TagId tagId, std::span<const ActivityId> ids, bool on) {
    const auto state = on ? Repository::TagState::on : Repository::TagState::off;
    write([&](Repository& repository) { repository.setTag(ids, tagId, state); });
}

void AppModel::toggleTag(TagId tagId, const Activity& activity) {
    const std::array ids{activity.id};
    setTag(tagId, ids, !activity.tagIds.contains(tagId));
}

bool AppModel::classify(const UnassignedGroup& group, const Classification& classification) {
    if (!classification.targetId) {
        return classifyAnew(group, classification);
    }
    const CategoryKind kind = classification.kind;
    const RowId target = *classification.targetId;
    if (classification.makeRule) {
        return addRule({.kind = kind, .id = target}, classification.field, classification.op,
                       classification.value);
    }
    if (kind == CategoryKind::project) {
        assignProject(target, group.activityIds);
    } else {
        setTag(target, group.activityIds, true);
    }
    return true;
}

/// The new category and what makes use of it are written together, or neither is.
bool AppModel::classifyAnew(const UnassignedGroup& group, const Classification& classification) {
    const auto category = newCategory(classification.kind, classification.newName);
    if (!category) {
        return false;
    }
    if (!classification.makeRule) {
        return write(
            [&](Repository& repository) { repository.insertCategoryOf(group.activityIds, *category); });
    }
    const QString value = trimmedBlanks(classification.value);
    return value.isEmpty() || write([&](Repository& repository) {
               repository.insertCategoryWithRule(*category, classification.field, classification.op, value);
           });
}

// Categories, rules and suggestions

void AppModel::updateCategory(CategoryKind kind, RowId id, const QString& name, const QString& colorHex) {
    write([&](Repository& repository) { repository.updateCategory(kind, id, name, colorHex); });
}

std::optional<RowId> AppModel::createCategory(CategoryKind kind, const QString& name,
                                              const std::optional<QString>& colorHex) {
    const auto category = newCategory(kind, name);
    if (!category) {
        return std::nullopt;
    }
    std::optional<RowId> id;
    const bool isMade = attempt([&](Repository& repository) {
        id = repository.insertCategory(kind, category->name, colorHex.value_or(category->colorHex));
    });
    if (isMade) {
        reload();
    }
    report(Source::action, std::nullopt);
    return id;
}

/// By its trimmed name and with the palette's next colour; none for a blank name.
std::optional<NewCategory> AppModel::newCategory(CategoryKind kind, const QString& name) const {
    const QString trimmed = trimmedBlanks(name);
    if (trimmed.isEmpty()) {
        return std::nullopt;
    }
    const std::size_t count = kind == CategoryKind::project ? m_projects.size() : m_tags.size();
    return NewCategory{.kind = kind,
                       .name = trimmed,
                       .colorHex = categoryPalette[count % categoryPalette.size()].toString()};
}

void AppModel::deleteCategory(CategoryKind kind, RowId id) {
    write([&](Repository& repository) { repository.deleteCategory(kind, id); });
}

void AppModel::updateRule(const Rule& rule) {
    write([&](Repository& repository) { repository.updateRule(rule); });
}

bool AppModel::addRule(const RuleTarget& target, RuleField field, RuleOperator op, const QString& value) {
    const QString trimmed = trimmedBlanks(value);
    return trimmed.isEmpty() ||
           write([&](Repository& repository) { repository.insertRule(target, field, op, trimmed); });
}

void AppModel::deleteRule(RuleId id) {
    write([&](Repository& repository) { repository.deleteRule(id); });
}

void AppModel::acceptSuggestion(const RuleSuggestion& shown) {
    write([&](Repository& repository) { repository.acceptSuggestion(shown); });
}

void AppModel::dismissSuggestion(const RuleSuggestion& shown) {
    write([&](Repository& repository) { repository.deleteSuggestion(shown); });
}

AppModel::NoteSaving AppModel::saveDayNote(const QString& day, const QString& text, const QString& seen) {
    NoteSaving saving;
    const bool isDone = write([&](Repository& repository) {
        repository.database().transaction([&] {
            const auto stored = repository.dailyNote(day);
            if (stored && stored->summary != seen && stored->summary != trimmedWhiteSpace(text)) {
                saving.other = stored;
            } else {
                repository.saveDailyNote(day, text, QStringLiteral("user"));
            }
        });
    });
    saving.isSaved = isDone && !saving.other;
    return saving;
}

} // namespace kestu
