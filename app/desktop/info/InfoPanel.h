#pragma once

#include "app/desktop/Desktop.h"
#include "app/desktop/info/DescriptiveForm.h"
#include "app/desktop/info/VersionList.h"
#include "metadata/InfoTexts.h"

#include <QScrollArea>
#include <QTimer>

class QLabel;
class QPushButton;

namespace korvo {

class MainWindow;

/// The inspector's tab that describes the photos a command would act on: their descriptive fields, what the
/// camera and the file say, and whether the files hold it all.
class InfoPanel : public QScrollArea {
public:
    explicit InfoPanel(MainWindow& window);
    ~InfoPanel() override;

    DescriptiveForm& form() { return *form_; }

private:
    QWidget* makeWriteBackRow(MainWindow& window);
    void libraryChanged(const LibraryChange& change);
    void loadSoon() { loading_.start(); }
    void load();
    void readSlice();
    void showRead();
    void showFacts();
    void look();
    void lookInBackground();
    void showFile(const FileFacts& facts);
    void showWriteBack();
    const PhotoItem* onlyPhoto() const;

    /// What is looked at beside the list, of the only photo.
    struct Wanted {
        PhotoID photo = 0;
        std::filesystem::path file;
        bool operator==(const Wanted&) const = default;
    };
    struct Looked {
        std::vector<PhotoItem> versions;
        bool hasBackup = false; // of what the file held when it was found: it was written since
    };
    static Looked lookAt(Catalog& catalog, const Wanted& wanted);
    void show(const Looked& looked);

    /// What has been read of the photos so far: there may be a million.
    struct Reading {
        CommonMetadata common;
        std::size_t next = 0;
        std::size_t waiting = 0; // with metadata that is not in the file yet
    };

    MainWindow& window_;
    Desktop& desktop_;
    DescriptiveForm* form_;
    QLabel* title_;
    QLabel* unwritten_;
    QWidget* writeBackRow_;
    QPushButton* save_;
    QPushButton* revert_;
    QPushButton* stop_;
    QLabel* camera_;
    QLabel* exposure_;
    QLabel* date_;
    QLabel* position_;
    QLabel* file_;
    QLabel* path_;
    QLabel* failure_;
    QLabel* status_;
    Reading reading_;
    VersionList* versions_;
    Wanted wanted_;
    /// The only photo, or, until the catalog was asked, the one before: fields must not jump.
    bool hasBackup_ = false;
    bool isLooking_ = false;
    bool lookAgain_ = false; // what is being looked at may have changed
    QTimer loading_;
    QTimer slices_;
    Connection storeChanged_;
    Connection browserChanged_;
    Connection writeBackChanged_;
    Task lookTask_; // last, so that it ends first
};

} // namespace korvo
