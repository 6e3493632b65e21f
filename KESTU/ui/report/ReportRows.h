// SPDX-License-Identifier: GPL-3.0-or-later
//
// The two kinds of rows of the report: a project's or tag's share of the time with its bar, and a ranked
// application or site. Painted, read aloud as list items, and changed in place.
#pragma once

#include <QColor>
#include <QVBoxLayout>
#include <QWidget>

#include <vector>

namespace kestu {

/// A row whose name gives way and is then told by a tooltip.
class ReportRow : public QWidget {
    Q_OBJECT

public:
    explicit ReportRow(int height);

protected:
    bool event(QEvent* event) override;

    /// Where the name stands, and the whole of it.
    [[nodiscard]] virtual QRect nameBox() const = 0;
    [[nodiscard]] virtual QString name() const = 0;
};

class ShareRow final : public ReportRow {
    Q_OBJECT

public:
    struct Content {
        QString name;
        QColor color; // invalid for unassigned time
        QString duration;
        QString share;
        double bar = 0; // of the bar's column, 0 to 1
        bool operator==(const Content&) const = default;
    };

    ShareRow();
    void setContent(const Content& content);

protected:
    void paintEvent(QPaintEvent* event) override;
    [[nodiscard]] QRect nameBox() const override;
    [[nodiscard]] QString name() const override { return m_content.name; }

private:
    Content m_content;
};

class RankRow final : public ReportRow {
    Q_OBJECT

public:
    struct Content {
        int rank = 0;
        QString name;
        QString duration;
        bool operator==(const Content&) const = default;
    };

    RankRow();
    void setContent(const Content& content);

protected:
    void paintEvent(QPaintEvent* event) override;
    [[nodiscard]] QRect nameBox() const override;
    [[nodiscard]] QString name() const override { return m_content.name; }

private:
    Content m_content;
};

/// The rows of one list, as many as there are contents; those that are there already stay.
template<typename Row>
class RowList final : public QWidget {
public:
    RowList()
        : m_layout(new QVBoxLayout(this)) {
        m_layout->setContentsMargins(0, 0, 0, 0);
        m_layout->setSpacing(0);
    }

    void setContents(const std::vector<typename Row::Content>& contents) {
        while (m_rows.size() > contents.size()) {
            m_layout->removeWidget(m_rows.back());
            m_rows.back()->hide();
            m_rows.back()->deleteLater();
            m_rows.pop_back();
        }
        for (std::size_t place = 0; place < contents.size(); ++place) {
            if (place == m_rows.size()) {
                m_rows.push_back(new Row);
                m_layout->addWidget(m_rows.back());
            }
            m_rows[place]->setContent(contents[place]);
        }
    }

private:
    QVBoxLayout* m_layout;
    std::vector<Row*> m_rows;
};

} // namespace kestu
