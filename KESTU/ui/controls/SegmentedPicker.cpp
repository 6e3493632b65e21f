// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/controls/SegmentedPicker.h"

#include "ui/controls/Roles.h"

#include <QPainter>
#include <algorithm>

namespace kestu {
namespace {

constexpr int inset = 3; // the edge of 1 and the padding of 2
constexpr int sidePadding = 9;
constexpr int segmentRadius = 4;

void paintSegment(QPainter& painter, const QRect& box, const ControlState& state, const Colors& colors) {
    if (state.on) {
        const QColor fill = state.enabled ? colors.segmentSelected : colors.controlDisabled;
        const QColor edge = state.enabled ? colors.controlBorder : colors.controlBorderDisabled;
        paintRounded(painter, box, segmentRadius, fill, {.color = edge, .width = 1});
    } else if (state.hovered) {
        paintRounded(painter, box, segmentRadius, colors.rowHover, {.color = {}, .width = 0});
    }
}

QColor segmentInk(const ControlState& state, const Colors& colors) {
    if (!state.enabled) {
        return colors.textDisabled;
    }
    return state.on || state.hovered ? colors.textPrimary : colors.textSecondary;
}

} // namespace

std::vector<QRect> segmentBoxes(QSize track, int count) {
    std::vector<QRect> boxes;
    const int inner = track.width() - 2 * inset;
    for (int index = 0; index < count; ++index) {
        const int left = inset + inner * index / count;
        const int right = inset + inner * (index + 1) / count;
        boxes.emplace_back(left, inset, right - left, track.height() - 2 * inset);
    }
    return boxes;
}

Segment::Segment(const QString& text, QWidget* parent)
    : ChoiceButton(Ring::inside, parent) {
    setText(text);
    setFont(fontOf(TextStyle::callout));
}

QSize Segment::sizeHint() const {
    const int text = QFontMetrics(semibold(font())).horizontalAdvance(this->text());
    return {text + 2 * sidePadding, metrics::controlHeight - 2 * inset};
}

void Segment::paintEvent(QPaintEvent*) {
    const Colors& colors = colorsOf(palette());
    const ControlState now = state();
    QPainter painter(this);
    paintSegment(painter, rect(), now, colors);
    painter.setFont(now.on ? semibold(font()) : font());
    painter.setPen(segmentInk(now, colors));
    painter.drawText(rect(), Qt::AlignCenter | Qt::TextSingleLine, text());
}

SegmentedPicker::SegmentedPicker(const QString& name, const QStringList& texts, QWidget* parent)
    : QWidget(parent) {
    reportRole(this, QAccessible::Grouping);
    setAccessibleName(name);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    for (const QString& text : texts) {
        add(text);
    }
    setCurrent(0);
}

void SegmentedPicker::add(const QString& text) {
    auto* const segment = new Segment(text, this);
    const int index = static_cast<int>(m_segments.size());
    connect(segment, &Segment::clicked, this, [this, index] { choose(index); });
    connect(segment, &Segment::stepped, this, [this](int by) {
        const int last = static_cast<int>(m_segments.size()) - 1;
        choose(std::clamp(m_current + by, 0, last));
    });
    connect(segment, &Segment::stateChanged, this, qOverload<>(&QWidget::update));
    m_segments.push_back(segment);
}

void SegmentedPicker::setCurrent(int index) {
    m_current = index;
    showChoice(m_segments, index);
}

void SegmentedPicker::choose(int index) {
    if (index == m_current) {
        return;
    }
    setCurrent(index);
    Q_EMIT chosen(index);
}

QSize SegmentedPicker::sizeHint() const {
    int widest = 0;
    for (const ChoiceButton* const segment : m_segments) {
        widest = std::max(widest, segment->sizeHint().width());
    }
    return {2 * inset + widest * static_cast<int>(m_segments.size()), metrics::controlHeight};
}

void SegmentedPicker::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    const std::vector<QRect> boxes = segmentBoxes(size(), static_cast<int>(m_segments.size()));
    for (std::size_t at = 0; at < m_segments.size(); ++at) {
        m_segments[at]->setGeometry(boxes[at]);
    }
}

void SegmentedPicker::paintEvent(QPaintEvent*) {
    const Colors& colors = colorsOf(palette());
    const bool focused = std::any_of(m_segments.begin(), m_segments.end(),
                                     [](const ChoiceButton* segment) { return segment->state().focused; });
    const Edge edge =
        focused ? Edge{.color = colors.focus, .width = 2} : Edge{.color = colors.cardBorder, .width = 1};
    QPainter painter(this);
    paintRounded(painter, rect(), metrics::radiusControl, colors.segmentTrack, edge);
}

} // namespace kestu
