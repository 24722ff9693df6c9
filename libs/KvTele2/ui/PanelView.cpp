#include "KvTele2/ui/PanelView.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <algorithm>
#include <cmath>

#include "KvTele2/ui/PanelAccess.h"
#include "KvTele2/ui/PanelKeyMap.h"
#include "desktop/ui/HelpRequest.h"

namespace kv {
namespace {

using panel::PanelMode;
using panel::PanelSight;
using panel::PixelRect;

constexpr int kPaleness = 150;  // of 255, that the window's colour lies over an old screen
constexpr int kSelection = 90;  // the same of the selection's

QRect RectOf(const PixelRect& rect) {
  return {rect.x, rect.y, rect.width, rect.height};
}

bool IsWhole(double factor) {
  return factor == std::floor(factor);
}

// Of the picture itself, without copying it.
QImage ImageOf(const panel::Picture& dots) {
  return {reinterpret_cast<const uchar*>(dots.Dots().data()), dots.Width(), dots.Height(),
          static_cast<qsizetype>(dots.Width()) * static_cast<qsizetype>(sizeof(panel::Dot)), QImage::Format_RGB32};
}

panel::PanelPlace PlaceAt(QPoint dot) {
  return {.key = std::nullopt, .x = dot.x(), .y = dot.y()};
}

}  // namespace

PanelView::PanelView(Source source, const PanelPress::OnChange& onChange, QWidget* parent)
    : QWidget(parent),
      mSource(std::move(source)),
      mPress(
          [this](const panel::PanelPlace& place) {
            if (auto* session = mSource()) session->Press(place);
          },
          onChange) {
  LetScreenReadersIn();
  setObjectName("panPanel");
  setAccessibleName("Screen of the controller");
  setFocusPolicy(Qt::StrongFocus);
  setAttribute(Qt::WA_OpaquePaintEvent, false);
  connect(qGuiApp, &QGuiApplication::applicationStateChanged, this, [this](Qt::ApplicationState state) {
    if (state != Qt::ApplicationActive) LetGo();
  });
}

PanelView::~PanelView() = default;

const panel::Picture* PanelView::Dots() const {
  const auto* session = mSource();
  return session ? session->Dots() : nullptr;
}

QSize PanelView::DotCount() const {
  const auto* dots = Dots();
  return dots ? QSize(dots->Width(), dots->Height()) : QSize();
}

bool PanelView::IsOperated() const {
  const auto* session = mSource();
  return session && session->State().mode == PanelMode::Operate;
}

bool PanelView::HasTouch() const {
  const auto* session = mSource();
  return session && session->Panel() && session->Panel()->kind == PanelKind::Colour;
}

void PanelView::SetScale(PanelScale scale) {
  mScale = scale;
  const QSize asked = mScale.Asked(DotCount(), devicePixelRatioF());
  setMinimumSize(asked.isEmpty() ? kSmallest : asked);
  update();
}

QSize PanelView::sizeHint() const {
  const QSize asked = mScale.Asked(DotCount(), devicePixelRatioF());
  return asked.isEmpty() ? (DotCount().isEmpty() ? kSmallest : DotCount()) : asked;
}

void PanelView::Follow(const panel::ScreenResources& resources) {
  auto* session = mSource();
  const auto changed = session ? session->TakeChanged() : std::vector<PixelRect>{};
  const PanelSight sight = session ? session->State().sight : PanelSight::Starting;
  const bool isPale = sight != PanelSight::Live;
  if (std::exchange(mShownDots, DotCount()) != mShownDots) SetScale(mScale);
  if (std::exchange(mIsPale, isPale) != isPale) update();
  setProperty(kTakesHelpKey, IsOperated() && ControllerKeyOf(*session->Panel(), Qt::Key_F1).has_value());
  for (const PixelRect& rect : changed) update(PlaceOf(rect));
  // Not every change is one of the picture: what a key means has no place in it.
  const auto* model = session ? session->Model() : nullptr;
  const PanelRevision revision = model ? model->Revision() : PanelRevision{};
  if (std::exchange(mTextsOf, revision) != revision || !changed.empty()) TakeTexts(resources);
}

void PanelView::TakeTexts(const panel::ScreenResources& resources) {
  const auto* session = mSource();
  const auto* model = session ? session->Model() : nullptr;
  const auto before =
      std::exchange(mTexts, model ? panel::TextsOf(*model, resources) : std::vector<panel::ScreenText>{});
  TellScreenReaders(*this, before);
  if (mArea) {
    const bool isThere =
        std::ranges::any_of(mTexts, [this](const auto& text) { return text.touch && text.place == *mArea; });
    if (!isThere) mArea.reset();
  }
  if (onTextsChanged) onTextsChanged();
}

// Where the picture is.

double PanelView::Factor() const {
  return mScale.Factor(DotCount(), size(), devicePixelRatioF());
}

QRectF PanelView::Place() const {
  return PlaceOfPicture(DotCount(), size(), Factor(), devicePixelRatioF());
}

QRect PanelView::PlaceOf(const PixelRect& dots) const {
  const double logical = Factor() / devicePixelRatioF();
  const QPointF corner = Place().topLeft();
  constexpr int kSpill = 2;  // a smooth picture mixes dots with those beside them
  return QRectF(corner.x() + dots.x * logical, corner.y() + dots.y * logical, dots.width * logical,
                dots.height * logical)
      .toAlignedRect()
      .adjusted(-kSpill, -kSpill, kSpill, kSpill);
}

std::optional<QPoint> PanelView::DotAt(QPointF at) const {
  const QRectF place = Place();
  if (DotCount().isEmpty() || !place.contains(at)) return std::nullopt;
  const double logical = Factor() / devicePixelRatioF();
  const QPoint dot(static_cast<int>((at.x() - place.x()) / logical), static_cast<int>((at.y() - place.y()) / logical));
  return QRect(QPoint(), DotCount()).contains(dot) ? std::optional(dot) : std::nullopt;
}

std::optional<std::uint16_t> PanelView::AreaAt(QPoint dot) const {
  const auto* session = mSource();
  return session && session->Model() ? session->Model()->AreaAt(dot.x(), dot.y()) : std::nullopt;
}

// Drawing.

void PanelView::paintEvent(QPaintEvent* event) {
  QPainter painter(this);
  const panel::Picture* dots = Dots();
  if (!dots || DotCount().isEmpty()) return;
  const double factor = Factor();
  const double logical = factor / devicePixelRatioF();
  const QRectF place = Place();
  const QRectF seen = place.intersected(event->rect());
  // Whole dots, and one more on each side: where the part ends nothing is mixed otherwise than beside it.
  const QRect source = QRectF((seen.x() - place.x()) / logical, (seen.y() - place.y()) / logical,
                              seen.width() / logical, seen.height() / logical)
                           .toAlignedRect()
                           .adjusted(-1, -1, 1, 1)
                           .intersected(QRect(QPoint(), DotCount()));
  const QRectF target(place.x() + source.x() * logical, place.y() + source.y() * logical, source.width() * logical,
                      source.height() * logical);
  painter.setRenderHint(QPainter::SmoothPixmapTransform, !IsWhole(factor));
  painter.drawImage(target, ImageOf(*dots), source);
  DrawMarks(painter);
  if (!mIsPale) return;
  QColor pale = palette().color(QPalette::Window);
  pale.setAlpha(kPaleness);
  painter.fillRect(place, pale);
}

void PanelView::DrawMarks(QPainter& painter) const {
  QColor selection = palette().color(QPalette::Highlight);
  const auto frame = [&](const PixelRect& place) {
    painter.setPen(QPen(palette().color(QPalette::Highlight), 3));
    painter.drawRect(PlaceOf(place));
  };
  if (mFound) frame(*mFound);
  if (mArea && hasFocus()) frame(*mArea);
  if (mSelected.isEmpty()) return;
  selection.setAlpha(kSelection);
  for (const panel::ScreenText& text : mTexts) {
    if (!text.touch && RectOf(text.place).intersects(mSelected)) painter.fillRect(PlaceOf(text.place), selection);
  }
}

QImage PanelView::Picture() const {
  const auto* dots = Dots();
  return dots ? ImageOf(*dots).copy() : QImage();
}

void PanelView::ShowFound(const std::optional<PixelRect>& place) {
  if (place == mFound) return;
  mFound = place;
  update();
}

// Selecting.

QString PanelView::TextToCopy() const {
  const auto* session = mSource();
  const auto* model = session ? session->Model() : nullptr;
  QStringList lines;
  for (const panel::ScreenText& text : mTexts) {
    const bool isChosen = mSelected.isEmpty() || RectOf(text.place).intersects(mSelected);
    if (!text.touch && !text.key && isChosen && model) lines += QString::fromStdString(text.text);
  }
  return lines.isEmpty() ? QString() : lines.join('\n') + '\n';
}

void PanelView::BeginSelection(QPointF at) {
  mSelectFrom = DotAt(at);
  Select({});
}

void PanelView::Select(const QRect& dots) {
  if (dots == mSelected) return;
  mSelected = dots;
  update();
}

// Pressing.

std::optional<panel::PanelPlace> PanelView::PressedNow() const {
  const bool isUsed = isVisible() && isActiveWindow() && hasFocus();
  return isUsed ? mPress.Now() : std::nullopt;
}

void PanelView::LetGo() {
  mTouched.reset();
  mHeldKey.Forget();
  mPress.End();
}

void PanelView::BeginTouch(QPointF at) {
  mTouched = DotAt(at);
  if (mTouched) mPress.Begin(PlaceAt(*mTouched));
}

void PanelView::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return LetGo();  // a second button is a change of mind
  const bool selects = (event->modifiers() & Qt::ShiftModifier) != 0 || !HasTouch() || !IsOperated();
  selects ? BeginSelection(event->position()) : BeginTouch(event->position());
}

void PanelView::mouseMoveEvent(QMouseEvent* event) {
  const auto dot = DotAt(event->position());
  if (mTouched) {
    if (!dot || AreaAt(*dot) != AreaAt(*mTouched)) return LetGo();
    mPress.MoveTo(PlaceAt(*dot));
  } else if (mSelectFrom && dot) {
    Select(QRect(*mSelectFrom, *dot).normalized());
  }
}

// A click in View presses nothing, but says why.
void PanelView::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return;
  const auto dot = DotAt(event->position());
  const bool isClick = mSelectFrom && mSelected.isEmpty() && (event->modifiers() & Qt::ShiftModifier) == 0;
  mSelectFrom.reset();
  if (mTouched) return LetGo();
  if (isClick && dot && HasTouch() && !IsOperated() && AreaAt(*dot)) mPress.Tap(PlaceAt(*dot));
}

std::optional<std::uint8_t> PanelView::KeyOf(const QKeyEvent& event) const {
  constexpr auto kOthers = Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier | Qt::ShiftModifier;
  const auto* session = mSource();
  const auto* panel = session ? session->Panel() : nullptr;
  const bool leadsBack = mIsFullScreen && event.key() == Qt::Key_Escape;
  if (!panel || !IsOperated() || leadsBack || (event.modifiers() & kOthers) != 0) return std::nullopt;
  return ControllerKeyOf(*panel, event.key());
}

bool PanelView::event(QEvent* event) {
  if (event->type() == QEvent::UngrabMouse) LetGo();
  // While it is operated the controller's keys are not the program's.
  if (event->type() == QEvent::ShortcutOverride && KeyOf(static_cast<QKeyEvent&>(*event))) {
    event->accept();
    return true;
  }
  return QWidget::event(event);
}

void PanelView::keyPressEvent(QKeyEvent* event) {
  if (event->matches(QKeySequence::Copy) && onCopy) return onCopy();
  if (event->matches(QKeySequence::SelectAll)) return Select(QRect(QPoint(), DotCount()));
  if (const auto key = KeyOf(*event)) {
    if (!mHeldKey.Begins(*event)) return;
    mTouched.reset();
    return mPress.Begin({.key = *key});
  }
  if (HasTouch() && !event->isAutoRepeat()) {
    if (event->key() == Qt::Key_Left || event->key() == Qt::Key_Up) return MoveArea(-1);
    if (event->key() == Qt::Key_Right || event->key() == Qt::Key_Down) return MoveArea(1);
    if (event->key() == Qt::Key_Space || event->key() == Qt::Key_Return) return PressArea(*event);
  }
  QWidget::keyPressEvent(event);
}

void PanelView::keyReleaseEvent(QKeyEvent* event) {
  mHeldKey.Release(*event);
  QWidget::keyReleaseEvent(event);
}

// To the next one that can be touched, as one reads.
void PanelView::MoveArea(int step) {
  std::vector<PixelRect> areas;
  for (const panel::ScreenText& text : mTexts) {
    if (text.touch) areas.push_back(text.place);
  }
  if (areas.empty()) return;
  const auto now = mArea ? std::ranges::find(areas, *mArea) : areas.end();
  const auto count = static_cast<int>(areas.size());
  const int at = now == areas.end() ? (step > 0 ? -1 : count) : static_cast<int>(now - areas.begin());
  mArea = areas[static_cast<std::size_t>((at + step + count) % count)];
  update();
}

void PanelView::PressArea(const QKeyEvent& event) {
  if (!mArea || !mHeldKey.Begins(event)) return;
  const panel::PanelPlace place{
      .key = std::nullopt, .x = mArea->x + mArea->width / 2, .y = mArea->y + mArea->height / 2};
  mPress.Begin(place);
}

void PanelView::focusOutEvent(QFocusEvent* event) {
  LetGo();
  mSelectFrom.reset();
  QWidget::focusOutEvent(event);
  update();
}

void PanelView::hideEvent(QHideEvent* event) {
  LetGo();
  QWidget::hideEvent(event);
}

void PanelView::changeEvent(QEvent* event) {
  if (event->type() == QEvent::ActivationChange && !isActiveWindow()) LetGo();
  QWidget::changeEvent(event);
}

}  // namespace kv
