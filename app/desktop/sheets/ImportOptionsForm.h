#pragma once

#include "app/desktop/Desktop.h"
#include "imports/ImportOptions.h"
#include "imports/Naming.h"

#include <QTimer>
#include <QWidget>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QVBoxLayout;

namespace korvo {

class FolderField;
class MainWindow;
class PatternField;

/// What is done with the picked photos: where they go, how they are named, what is written about them.
class ImportOptionsForm : public QWidget {
public:
    /// `duplicatesChanged` is told that the user takes them now, or leaves them out.
    ImportOptionsForm(MainWindow& window, std::function<void()> duplicatesChanged);

    /// Throws std::runtime_error when the project has no name, or none is chosen.
    ImportOptions options() const;
    Duplicates duplicates() const;
    /// Has them come back in the next import, but for what belongs to this one: a project's name, keywords
    /// and whether duplicates are taken. Throws std::system_error.
    void keep() const;
    /// Offers what fits the source, and an example of a name with one of its files.
    void setSource(const ImportSource& source);
    void setExample(const Candidate* candidate, std::size_t total);

private:
    QLineEdit* addLine(const QString& title, const QString& hint = {});
    void addFiles();
    void addNames();
    void addProjects();
    void addTexts();
    void load();
    void projectsChanged();
    void fillProjects();
    void refresh();
    void showExample();

    MainWindow& window_;
    QVBoxLayout* layout_;
    QCheckBox* copy_;
    FolderField* folder_;
    QLabel* filesHelp_;
    QComboBox* naming_;
    PatternField* pattern_;
    QLabel* example_;
    QComboBox* project_;
    QLineEdit* newProject_;
    QComboBox* chosenProject_;
    QLineEdit* creator_;
    QLineEdit* copyright_;
    QLineEdit* keywords_;
    QCheckBox* leaveOutDuplicates_;
    QCheckBox* eject_;
    bool mustCopy_ = false;
    bool canEject_ = false;
    NamingFacts exampleFacts_;
    std::string exampleExtension_;
    std::size_t exampleTotal_ = 1;
    QTimer fillingSoon_;
    Connection projectsChanged_;
};

} // namespace korvo
