#pragma once

#include "app/desktop/window/MainWindow.h"
#include "app/pictures/ExportRun.h"

#include <QDialog>

class QCheckBox;
class QComboBox;
class QSpinBox;
class QPushButton;
class QLabel;

namespace korvo {

class FolderField;
class PatternField;

/// Asks how photos are to be exported, and starts it as a job.
void showExportSheet(MainWindow& window, std::vector<PhotoID> photos);

/// The sheet itself. What was chosen comes back the next time.
class ExportSheet : public QDialog {
public:
    ExportSheet(MainWindow& window, std::vector<PhotoID> photos);

    ExportPlan plan() const;

private:
    void load();
    void save() const;
    void refresh();
    void accept() override;

    Desktop& desktop_;
    std::vector<PhotoID> photos_;
    PhotoItem first_;
    FolderField* folder_;
    QComboBox *format_, *size_;
    PatternField* pattern_;
    QSpinBox *pixels_, *quality_;
    QCheckBox* withPosition_;
    QLabel* example_;
    QPushButton* export_;
};

} // namespace korvo
