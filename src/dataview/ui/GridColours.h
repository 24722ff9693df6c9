#pragma once

#include <QColor>
#include <QPalette>

#include "dataview/operands/OperandTypes.h"

namespace kv::mdlDataTypesView {

// The colours of both grids. Those of the types are the catalogue's; on a dark desktop their partners of the same hue
// take their place, so that the desktop's text colour is read on either.
struct GridColours {
  QColor writable;   // background of a type's cells
  QColor readOnly;   // the same
  QColor unusable;   // background of cells that the model does not have
  QColor text;       // of values
  QColor faint;      // of what is less important, or old
  QColor selection;  // laid over the background
  QColor change;     // the mark of a value that has just changed
  QColor edited;     // the mark of a value that is not written
  QColor fault;      // the frame of a text that is refused
  QColor region;     // the frame around the cells of a region

  [[nodiscard]] const QColor& OfType(OperandTypeCode type) const;
};

[[nodiscard]] GridColours ColoursFor(const QPalette& palette);

// `below` with `above` laid over it; `share` 0 to 1.
[[nodiscard]] QColor Blend(const QColor& below, const QColor& above, double share);

}  // namespace kv::mdlDataTypesView
