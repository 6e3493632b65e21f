// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/Text.h"
#include "storage/Repository.h"

#include <QStringBuilder>

#include <algorithm>

namespace kestu {
namespace {

template<typename Category>
Category categoryIn(const Row& row) {
    return {.id = row.integer(0), .name = row.text(1), .colorHex = row.text(2), .sort = row.integer(3)};
}

Rule ruleIn(const Row& row) {
    const RuleTarget target = row.isNull(1) ? RuleTarget{.kind = CategoryKind::tag, .id = row.integer(2)}
                                            : RuleTarget{.kind = CategoryKind::project, .id = row.integer(1)};
    return {.id = row.integer(0),
            .target = target,
            .field = ruleFieldFromRaw(row.text(3)),
            .op = ruleOperatorFromRaw(row.text(4)),
            .value = row.text(5),
            .sort = row.integer(6)};
}

RuleSuggestion suggestionIn(const Row& row) {
    return {.id = row.integer(0),
            .kind = categoryKindFromRaw(row.text(1)),
            .targetName = row.text(2),
            .field = ruleFieldFromRaw(row.text(3)),
            .op = ruleOperatorFromRaw(row.text(4)),
            .value = row.text(5),
            .reason = row.text(6),
            .createdAt = instantAt(row.real(7))};
}

DailyNote noteIn(const Row& row) {
    return {.day = row.text(0),
            .summary = row.text(1),
            .author = row.text(2),
            .updatedAt = instantAt(row.real(3))};
}

std::int64_t firstIntegerOrZero(const Database& database, const QString& sql) {
    const auto values = database.query(sql, {}, [](const Row& row) { return row.integer(0); });
    return values.empty() ? 0 : values.front();
}

/// The place after the last row of `table`.
std::int64_t nextSort(const Database& database, const QString& table) {
    return firstIntegerOrZero(database, u"SELECT COALESCE(MAX(sort), -1) + 1 FROM " % table);
}

/// The value of a rule's column for `kind`: of project_id and tag_id exactly one is set.
SqlValue targetColumn(const RuleTarget& target, CategoryKind kind) {
    return target.kind == kind ? SqlValue(target.id) : SqlValue(SqlNull{});
}

} // namespace

std::vector<Project> Repository::projects() const {
    return m_database->query(QStringLiteral("SELECT id, name, color, sort FROM project ORDER BY sort, id"),
                             {}, categoryIn<Project>);
}

std::vector<Tag> Repository::tags() const {
    return m_database->query(QStringLiteral("SELECT id, name, color, sort FROM tag ORDER BY sort, id"), {},
                             categoryIn<Tag>);
}

RowId Repository::insertCategory(CategoryKind kind, const QString& name, const QString& colorHex) {
    const QString table = rawString(kind);
    const std::int64_t sort = nextSort(*m_database, table);
    return m_database->run(u"INSERT INTO " % table % u" (name, color, sort) VALUES (?, ?, ?)",
                           {name, colorHex, sort});
}

void Repository::updateCategory(CategoryKind kind, RowId id, const QString& name, const QString& colorHex) {
    m_database->run(u"UPDATE " % rawString(kind) % u" SET name = ?, color = ? WHERE id = ?",
                    {name, colorHex, id});
}

void Repository::deleteCategory(CategoryKind kind, RowId id) {
    m_database->run(u"DELETE FROM " % rawString(kind) % u" WHERE id = ?", {id});
}

std::optional<RowId> Repository::findCategory(CategoryKind kind, const QString& name) const {
    const auto rows = m_database->query(u"SELECT id, name FROM " % rawString(kind), {}, [](const Row& row) {
        return std::pair(row.integer(0), matchingKey(row.text(1)));
    });
    const auto found = std::ranges::find(rows, matchingKey(name), &std::pair<RowId, QString>::second);
    return found == rows.end() ? std::nullopt : std::optional(found->first);
}

RowId Repository::findOrCreateCategory(CategoryKind kind, const QString& name,
                                       const std::optional<QString>& colorHex) {
    if (const auto found = findCategory(kind, name)) {
        return *found;
    }
    const auto count =
        static_cast<std::size_t>(firstIntegerOrZero(*m_database, u"SELECT COUNT(*) FROM " % rawString(kind)));
    const QString nextColor = categoryPalette[count % categoryPalette.size()].toString();
    return insertCategory(kind, trimmedBlanks(name), colorHex.value_or(nextColor));
}

void Repository::insertCategoryWithRule(const NewCategory& category, RuleField field, RuleOperator op,
                                        const QString& value) {
    m_database->transaction([&] {
        const RowId id = insertCategory(category.kind, category.name, category.colorHex);
        insertRule({.kind = category.kind, .id = id}, field, op, value);
    });
}

void Repository::insertCategoryOf(std::span<const ActivityId> ids, const NewCategory& category) {
    m_database->transaction([&] {
        const RowId id = insertCategory(category.kind, category.name, category.colorHex);
        if (category.kind == CategoryKind::project) {
            setProject(ids, id);
        } else {
            writeTag(ids, id, TagState::on);
        }
    });
}

std::vector<Rule> Repository::rules() const {
    return m_database->query(
        QStringLiteral("SELECT id, project_id, tag_id, field, op, value, sort FROM rule ORDER BY sort, id"),
        {}, ruleIn);
}

RuleId Repository::insertRule(const RuleTarget& target, RuleField field, RuleOperator op,
                              const QString& value) {
    const std::int64_t sort = nextSort(*m_database, QStringLiteral("rule"));
    return m_database->run(
        QStringLiteral(
            "INSERT INTO rule (project_id, tag_id, field, op, value, sort) VALUES (?, ?, ?, ?, ?, ?)"),
        {targetColumn(target, CategoryKind::project), targetColumn(target, CategoryKind::tag),
         rawString(field), rawString(op), value, sort});
}

void Repository::updateRule(const Rule& rule) {
    m_database->run(
        QStringLiteral(
            "UPDATE rule SET project_id = ?, tag_id = ?, field = ?, op = ?, value = ? WHERE id = ?"),
        {targetColumn(rule.target, CategoryKind::project), targetColumn(rule.target, CategoryKind::tag),
         rawString(rule.field), rawString(rule.op), rule.value, rule.id});
}

void Repository::deleteRule(RuleId id) {
    m_database->run(QStringLiteral("DELETE FROM rule WHERE id = ?"), {id});
}

std::vector<RuleSuggestion> Repository::suggestions() const {
    return m_database->query(QStringLiteral("SELECT id, target_kind, target_name, field, op, value, reason, "
                                            "created_at FROM rule_suggestion ORDER BY id"),
                             {}, suggestionIn);
}

RuleId Repository::acceptSuggestion(const RuleSuggestion& shown) {
    return m_database->transaction([&] {
        removeSuggestion(shown);
        const RuleTarget target{.kind = shown.kind, .id = findOrCreateCategory(shown.kind, shown.targetName)};
        return insertRule(target, shown.field, shown.op, shown.value);
    });
}

void Repository::deleteSuggestion(const RuleSuggestion& shown) {
    m_database->transaction([&] { removeSuggestion(shown); });
}

/// An id is given out again: another suggestion may have taken the place of the one that was shown. The
/// caller runs it inside one transaction.
void Repository::removeSuggestion(const RuleSuggestion& shown) {
    const std::vector<RuleSuggestion> waiting = suggestions();
    if (std::ranges::find(waiting, shown) == waiting.end()) {
        throw DatabaseError(QStringLiteral("提案が見つかりません（id: %1）").arg(shown.id));
    }
    m_database->run(QStringLiteral("DELETE FROM rule_suggestion WHERE id = ?"), {shown.id});
}

std::optional<DailyNote> Repository::dailyNote(const QString& day) const {
    const auto notes = m_database->query(
        QStringLiteral("SELECT day, summary, author, updated_at FROM daily_note WHERE day = ?"), {day},
        noteIn);
    return notes.empty() ? std::nullopt : std::optional(notes.front());
}

void Repository::saveDailyNote(const QString& day, const QString& summary, const QString& author) {
    const QString trimmed = trimmedWhiteSpace(summary);
    if (trimmed.isEmpty()) {
        m_database->run(QStringLiteral("DELETE FROM daily_note WHERE day = ?"), {day});
        return;
    }
    m_database->run(
        QStringLiteral("INSERT INTO daily_note (day, summary, author, updated_at) VALUES (?, ?, ?, ?)\n"
                       "ON CONFLICT(day) DO UPDATE SET summary = excluded.summary, author = "
                       "excluded.author, updated_at = excluded.updated_at"),
        {day, trimmed, author, epochSeconds(m_clock())});
}

} // namespace kestu
