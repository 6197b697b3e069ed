#pragma once

#include "platform/Defaults.h"

#include <QLineEdit>

#include <functional>

class QMenu;

namespace korvo {

/// A field for a pattern of file names, with a menu of the presets by their names.
class PatternField : public QWidget {
public:
    /// `defaults` must outlive it. `editPresets`, if given, is what the last entry of the menu does.
    explicit PatternField(const Defaults& defaults, std::function<void()> editPresets = {});

    QLineEdit& edit() { return *edit_; }
    const QLineEdit& edit() const { return *edit_; }

private:
    void fill();

    const Defaults& defaults_;
    std::function<void()> editPresets_;
    QLineEdit* edit_;
    QMenu* presets_;
};

} // namespace korvo
