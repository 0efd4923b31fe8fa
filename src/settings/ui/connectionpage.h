#pragma once

#include <QWidget>
#include <map>

#include "settings/connectionrecord.h"

class QFormLayout;

namespace hollowmere {

/// The page of one type in the connection dialog: a control for each member of the record, named
/// "e" + type + "_" + member.
class TConnectionPage : public QWidget {
  Q_OBJECT

 public:
  explicit TConnectionPage(const TConnectionType& type, QWidget* parent = nullptr);

  [[nodiscard]] const TConnectionType& type() const { return type_; }
  [[nodiscard]] TFieldValues values() const;
  void setValues(const TFieldValues& values);
  void focusField(std::string_view member);
  void focusFirst();

 Q_SIGNALS:
  void edited();

 private:
  QWidget* makeEditor(const TConnectionField& field);
  QWidget* makeLine(const TConnectionField& field);
  void addRow(QFormLayout& layout, const TConnectionField& field);

  const TConnectionType& type_;
  std::map<std::string_view, QWidget*> editors_;
};

}  // namespace hollowmere
