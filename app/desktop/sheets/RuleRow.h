#pragma once

#include "catalog/SmartAlbumRules.h"

#include <QWidget>

#include <functional>

class QComboBox;
class QHBoxLayout;
class QLabel;
class QLineEdit;

namespace korvo {

/// A row of the smart album editor: a rule's field, operator and value, and what is wrong with it.
class RuleRow : public QWidget {
public:
    /// What follows when the user changes the rule, and asks for it to go.
    struct Handlers {
        std::function<void()> changed;
        std::function<void(RuleRow*)> removed;
    };
    RuleRow(SmartAlbumRule rule, Handlers handlers, QWidget* parent);

    const SmartAlbumRule& rule() const { return rule_; }
    void focusValue();

private:
    void chooseField();
    void chooseOperator();
    void fillOperators();
    void fillValue();
    void addChoices(const std::vector<std::string>& choices);
    void addText();
    void addPlace();
    void setValue(std::string value);
    void showFault();

    SmartAlbumRule rule_;
    Handlers handlers_;
    QComboBox* field_;
    QComboBox* op_;
    QWidget* value_ = nullptr; // made anew for each field
    QHBoxLayout* controls_;
    QLabel* fault_;
};

} // namespace korvo
