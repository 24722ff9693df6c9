#pragma once

#include <QWidget>
#include <functional>
#include <string>
#include <vector>

#include "KvCmDrv1/LinkInput.h"
#include "KvCmDrv1/ui/PortField.h"

class QAction;
class QComboBox;
class QFormLayout;
class QLineEdit;

namespace kv {

// The fields of a link's settings, one below the other; which of them are seen is the dialog's business.
class LinkFields final : public QWidget {
 public:
  LinkFields(const std::vector<std::string>& models, const PortLister& listPorts, QWidget* parent);

  void SetInput(const LinkInput& input);
  [[nodiscard]] LinkInput Input() const;  // with the transport of the last SetInput or SetTransport
  void SetTransport(Transport transport) { mTransport = transport; }

  void ShowOnly(const std::function<bool(LinkField)>& isShown);
  // A row above the first field, in line with them.
  void InsertAbove(const char* label, QWidget* widget);
  void GiveFocusTo(LinkField field);
  // Puts all fields behind `control` for the Tab key; the last of them.
  [[nodiscard]] QWidget* PutBehind(QWidget* control) const;

  // Marks these fields, and no others, as faulty.
  void MarkFaults(const std::vector<LinkFault>& faults);

  std::function<void()> onChange;

 private:
  struct Control {
    LinkField field;
    QWidget* widget;
    QLineEdit* line;  // where a fault is marked; null where nothing wrong can be chosen
    std::function<void(const LinkInput& from)> show;
    std::function<void(LinkInput& to)> read;
    QAction* mark = nullptr;
  };

  struct TextField;
  static const std::vector<TextField>& TextFields();

  void AddText(LinkField field);
  void AddModel(const std::vector<std::string>& models);
  void AddPort(const PortLister& listPorts);
  void AddBaudRate();
  void AddFraming();
  void AddDialling();
  void AddReconnects();
  QComboBox* NewCombo(const char* name, const char* accessibleName, const char* tip);
  void Add(const char* label, Control control);
  void Changed() const;

  QFormLayout* mForm;
  std::vector<Control> mControls;
  Transport mTransport = Transport::Simulated;
};

}  // namespace kv
