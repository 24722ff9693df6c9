#pragma once

#include <span>
#include <string>
#include <string_view>

namespace kv {

// What tools know about controller models. A model is a text that is never parsed: each predicate compares the whole
// text, or its first few characters, with a fixed list. Comparisons are exact and case-sensitive except where stated.
//
// Two families: the Aurex family (the K and TQ texts), whose models with a colour screen are the colour models, and the
// compact family (the Q5x, PX1, PR1 and BRIO texts).

// Exactly "Q50", "AurexQ50" or "Q50Net": the models with the operand counts of the compact family.
[[nodiscard]] bool IsCompactModel(std::string_view model);

// Exactly "Q50" or "Q50Net": the models whose operands are read with one operation a type.
[[nodiscard]] bool IsCompactDriverModel(std::string_view model);

// Exactly "Q50" or "Q50Net", or "BRIO" in any case.
[[nodiscard]] bool IsCompactOrBrio(std::string_view model);

// "BRIO" in any case: what the driver is told about a session's model.
[[nodiscard]] bool IsBrioModel(std::string_view model);

// Begins with "BR" or "Br": the texts with which BRIO controllers report themselves.
[[nodiscard]] bool IsBrioCode(std::string_view reported);

// Begins with "Q50-2" or "Q51-2", or IsBrioCode.
[[nodiscard]] bool IsCompactIdentification(std::string_view reported);

// The colour family: its members by their full text (boot texts among them) or by their first four characters.
[[nodiscard]] bool IsColourModel(std::string_view model);

// The colour models with the larger operand memory, by their first four characters.
[[nodiscard]] bool IsExtendedColourModel(std::string_view model);

// Begins with "K230".
[[nodiscard]] bool IsK230Model(std::string_view model);

// The code that the download designer is started with; empty when the designer does not know the model.
[[nodiscard]] std::string_view DesignerModelCode(std::string_view model);

// Whether the saved grids of the operand view have to be deleted when the model changes. Only a move out of a group
// deletes them, or one between the families: a grid of a smaller group fits into a wider one, never the other way
// round.
[[nodiscard]] bool GridFilesMustGo(std::string_view oldModel, std::string_view newModel);

// The models that the host offers for selection, in the order in which they are offered.
[[nodiscard]] std::span<const std::string_view> SelectableModels();

// The model to select for a controller that reports itself as `reported`: compact controllers report the variant behind
// the model ("Q50-2-R34"), all others the model's own text. Boot texts stay as they are.
[[nodiscard]] std::string ModelOfIdentification(std::string_view reported);

}  // namespace kv
