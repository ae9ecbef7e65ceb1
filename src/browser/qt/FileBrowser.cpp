#include "FileBrowser.h"

#include <QApplication>
#include <QDir>
#include <QFileIconProvider>
#include <QFileInfo>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QMimeDatabase>
#include <QMouseEvent>
#include <QPainter>
#include <QPointingDevice>
#include <QSignalBlocker>
#include <QStandardPaths>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>
#include <map>

#include "DirectoryReader.h"
#include "Json.h"
#include "Strings.h"

namespace satwalk::browser::qt {

namespace {

QString FromUtf8(const std::string& text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

// The current folder in one line: a path too long for the width keeps its
// end, where the folder's own name is. text() stays the whole path.
class PathLabel final : public QLabel {
  public:
    explicit PathLabel(QWidget* parent) : QLabel(parent) {
        setProperty(shell::qt::kElidesItsText, true);
    }
    QSize minimumSizeHint() const override { return {1, QLabel::minimumSizeHint().height()}; }

  protected:
    void paintEvent(QPaintEvent*) override {
        QPainter p(this);
        const QRect r = contentsRect();
        p.setPen(palette().color(QPalette::WindowText));
        p.drawText(r, Qt::AlignLeft | Qt::AlignVCenter,
                   fontMetrics().elidedText(text(), Qt::ElideLeft, r.width()));
    }
};

// The system's icons for folders and for files by their extension, asked
// once per kind and size: a folder of thousands of photos costs one look-up.
// Without a desktop (no icon theme named) the installed Adwaita theme stands
// in when there is one, asked by the file's type; each icon is drawn from its largest picture so
// that every row's icon has the same size and sharpness.
class IconCache {
  public:
    IconCache() {
        if (!QIcon::themeName().isEmpty())
            return;
        const QStringList folders =
            QStandardPaths::locateAll(QStandardPaths::GenericDataLocation, QStringLiteral("icons"),
                                      QStandardPaths::LocateDirectory);
        for (const QString& folder : folders) {
            if (QFileInfo::exists(folder + QStringLiteral("/Adwaita/index.theme"))) {
                QIcon::setThemeSearchPaths(QIcon::themeSearchPaths() + folders);
                QIcon::setThemeName(QStringLiteral("Adwaita"));
                standIn_ = true;
                break;
            }
        }
    }

    QIcon For(const std::string& path, bool isFolder, int size) {
        const QFileInfo info(QFile::decodeName(QByteArray::fromStdString(path)));
        const QString key = (isFolder ? QStringLiteral("/") : info.suffix().toLower()) +
                            QLatin1Char(' ') + QString::number(size);
        auto it = icons_.find(key);
        if (it == icons_.end()) {
            QIcon icon;
            if (standIn_ && isFolder) {
                icon = QIcon::fromTheme(QStringLiteral("folder"));
            } else if (standIn_) {
                const QMimeType type = types_.mimeTypeForFile(info, QMimeDatabase::MatchExtension);
                icon = QIcon::fromTheme(type.iconName(), QIcon::fromTheme(type.genericIconName()));
            }
            if (icon.isNull())
                icon = provider_.icon(info);
            if (icon.isNull())
                icon =
                    provider_.icon(isFolder ? QFileIconProvider::Folder : QFileIconProvider::File);
            const QPixmap largest = icon.pixmap(icon.actualSize(QSize(256, 256)));
            if (!largest.isNull()) {
                icon = QIcon(
                    largest.scaled(size, size, Qt::KeepAspectRatio, Qt::SmoothTransformation));
            }
            it = icons_.emplace(key, icon).first;
        }
        return it->second;
    }

  private:
    QFileIconProvider provider_;
    QMimeDatabase types_;
    bool standIn_ = false;
    std::map<QString, QIcon> icons_;
};

IconCache& Icons() {
    static IconCache cache;
    return cache;
}

// Where the browser was last, for the next opening.
std::string& LastFolder() {
    static std::string folder;
    return folder;
}

bool IsBackKey(int key) {
    return key == Qt::Key_Escape || key == Qt::Key_Back || key == Qt::Key_Backspace;
}

}  // namespace

FileBrowser::FileBrowser(shell::qt::DialogStack& stack, int mode, const QString& title,
                         const std::string& folder)
    : FullScreenDialog(stack, kFileBrowserDialog, title),
      mode_(mode),
      nav_(mode,
           [](const std::string& path) {
               QApplication::setOverrideCursor(Qt::WaitCursor);
               std::vector<DirEntry> entries = ReadDirectory(path).entries;
               QApplication::restoreOverrideCursor();
               return entries;
           }),
      folderLabel_(new PathLabel(body())),
      list_(new QTreeWidget(body())) {
    const int b = baseTextHeight();
    auto* layout = new QVBoxLayout(body());
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(std::max(2, b / 5));

    AddControl(kFolderLabel, shell::ControlKind::Label, folderLabel_);
    layout->addWidget(folderLabel_);

    // Two columns without a header: the name with its icon, the size at
    // the right. Rows keep the order of the listing.
    list_->setColumnCount(2);
    list_->setHeaderHidden(true);
    list_->setRootIsDecorated(false);
    list_->setUniformRowHeights(true);
    list_->setSelectionMode(QAbstractItemView::SingleSelection);
    list_->setSelectionBehavior(QAbstractItemView::SelectRows);
    list_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    list_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list_->setTextElideMode(Qt::ElideMiddle);
    list_->setIconSize(QSize((16 * b) / 15, (16 * b) / 15));
    list_->header()->setStretchLastSection(false);
    list_->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    list_->header()->setSectionResizeMode(1, QHeaderView::ResizeToContents);
    list_->setStyleSheet(
        QStringLiteral("QTreeWidget { border: 1px solid rgb(160,180,210); outline: 0; }"
                       "QTreeWidget::item { padding: %1px 0px; }"
                       "QTreeWidget::item:selected { background: rgb(34,89,172); color: white; }")
            .arg(std::max(1, b / 10)));
    list_->installEventFilter(this);
    list_->viewport()->installEventFilter(this);
    AddControl(kFileList, shell::ControlKind::List, list_);
    layout->addWidget(list_, 1);
    // Presses and clicks go to the navigator (the event filter); the arrow
    // keys stay the list's, and the row they reach is the selection.
    connect(list_, &QTreeWidget::currentItemChanged, this, [this](QTreeWidgetItem* item) {
        const int row = list_->indexOfTopLevelItem(item);
        if (row >= 0)
            nav_.Select(static_cast<std::size_t>(row));
    });

    auto* filter = new QLabel(FromUtf8(std::string(FilterCaption(mode))), body());
    AddControl(kFilterLabel, shell::ControlKind::Label, filter);
    layout->addWidget(filter);

    SetSoftKeys({QString::fromUtf8(common::LoadString(common::kStrUp)), [this] { GoUp(); }, true,
                 common::kStrUp},
                {QString::fromUtf8(common::LoadString(common::kStrCancel)), [this] { Reject(); },
                 true, common::kStrCancel});
    typing_.start();
    ListFolder(folder.empty() ? std::string("/") : folder);
}

void FileBrowser::ListFolder(const std::string& folder, const std::string& cameFrom) {
    nav_.List(folder, cameFrom);
    Show();
}

void FileBrowser::GoUp() {
    nav_.GoUp();
    Show();
}

void FileBrowser::Activate(int row) {
    if (row >= 0)
        nav_.Open(static_cast<std::size_t>(row));
    Show();
}

void FileBrowser::Show() {
    const std::vector<ListingRow>& rows = nav_.rows();
    const std::string& shown = nav_.folder();
    if (shownListing_ != nav_.listings()) {
        shownListing_ = nav_.listings();
        LastFolder() = shown;
        folderLabel_->setText(FromUtf8(SafeDisplayName(shown)));
        const QSignalBlocker quiet(list_);
        list_->setUpdatesEnabled(false);
        list_->clear();
        QList<QTreeWidgetItem*> items;
        items.reserve(static_cast<qsizetype>(rows.size()));
        for (const ListingRow& row : rows) {
            auto* item = new QTreeWidgetItem;
            item->setText(0, FromUtf8(row.displayName));
            item->setText(1, FromUtf8(row.sizeText));
            item->setTextAlignment(1, Qt::AlignRight | Qt::AlignVCenter);
            // ".." wears the icon of the folder it stands in.
            item->setIcon(0, Icons().For(row.isUp ? shown : ChildPath(shown, row.name),
                                         row.isFolder, list_->iconSize().width()));
            items << item;
        }
        list_->addTopLevelItems(items);
        list_->setUpdatesEnabled(true);
        SetSoftKeyEnabled(0, !IsRoot(shown));
    }
    if (nav_.selected() < rows.size()) {
        QTreeWidgetItem* current = list_->topLevelItem(static_cast<int>(nav_.selected()));
        if (list_->currentItem() != current) {
            const QSignalBlocker quiet(list_);
            list_->setCurrentItem(current);
        }
        list_->scrollToItem(current);
    }
    if (nav_.chosen() && chosenPath_.empty()) {
        chosenPath_ = *nav_.chosen();
        Accept();
    }
}

int FileBrowser::currentRow() const {
    return list_->indexOfTopLevelItem(list_->currentItem());
}

bool FileBrowser::Choose(const std::string& path, std::string& error) {
    const QString absolute = QDir::cleanPath(
        QFileInfo(QFile::decodeName(QByteArray::fromStdString(path))).absoluteFilePath());
    const std::string full = QFile::encodeName(absolute).toStdString();
    const std::string name(FolderName(full));
    if (name.empty()) {
        error = "choose needs a file, not the root";
        return false;
    }
    ListFolder(ParentFolder(full), name);
    const std::vector<ListingRow>& rows = nav_.rows();
    const auto it = std::find_if(rows.begin(), rows.end(), [&](const ListingRow& row) {
        return !row.isUp && row.name == name;
    });
    if (it == rows.end()) {
        error = "the file browser does not list " + full;
        return false;
    }
    Activate(static_cast<int>(it - rows.begin()));
    return true;
}

void FileBrowser::WriteExtraState(common::JsonMembers& members) const {
    members.Int("mode", mode_);
    const std::vector<ListingRow>& rows = nav_.rows();
    members.Text("folder", nav_.folder());
    members.Text("filter", FilterCaption(mode_));
    std::string& out = members.Name("rows");
    out += '[';
    for (std::size_t i = 0; i < rows.size(); ++i) {
        out += i > 0 ? ",{" : "{";
        common::JsonMembers row(out);
        row.Text("name", rows[i].name);
        row.Text("sizeText", rows[i].sizeText);
        row.Bool("isFolder", rows[i].isFolder);
        out += '}';
    }
    out += ']';
}

bool FileBrowser::eventFilter(QObject* watched, QEvent* event) {
    // Presses and releases on the rows: a finger or stylus on the screen
    // comes as a mouse event from a touch device.
    const QEvent::Type type = event->type();
    if (watched == list_->viewport() &&
        (type == QEvent::MouseButtonPress || type == QEvent::MouseButtonDblClick ||
         type == QEvent::MouseButtonRelease)) {
        auto* mouse = static_cast<QMouseEvent*>(event);
        if (mouse->button() != Qt::LeftButton)
            return true;
        const QModelIndex index = list_->indexAt(mouse->position().toPoint());
        const std::size_t row = index.isValid() ? static_cast<std::size_t>(index.row()) : kNoRow;
        const Pointer pointer =
            mouse->pointingDevice() != nullptr &&
                    mouse->pointingDevice()->type() != QInputDevice::DeviceType::Mouse
                ? Pointer::Touch
                : Pointer::Mouse;
        if (type == QEvent::MouseButtonRelease)
            nav_.Release(row);
        else
            nav_.Press(row, pointer, type == QEvent::MouseButtonDblClick);
        Show();
        return true;
    }
    // The list has the keys: Enter opens the selected row, and the Back key
    // is the dialog's (below), not the list's.
    if (watched == list_ && event->type() == QEvent::KeyPress) {
        auto* key = static_cast<QKeyEvent*>(event);
        if (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) {
            Activate(currentRow());
            return true;
        }
        if (IsBackKey(key->key())) {
            keyPressEvent(key);
            return true;
        }
        // Letters select the first name they begin.
        const QString text = key->text();
        const bool typed =
            !text.isEmpty() && text.at(0).isPrint() &&
            !(key->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier));
        if (typed) {
            nav_.Type(text.toStdString(), typing_.elapsed());
            Show();
            return true;
        }
    }
    if (watched == list_ && event->type() == QEvent::KeyRelease &&
        IsBackKey(static_cast<QKeyEvent*>(event)->key())) {
        keyReleaseEvent(static_cast<QKeyEvent*>(event));
        return true;
    }
    return FullScreenDialog::eventFilter(watched, event);
}

void FileBrowser::keyPressEvent(QKeyEvent* event) {
    // Back goes up when it is let go; its press does nothing (it does not
    // cancel, as Escape does in other dialogs).
    if (IsBackKey(event->key()))
        return;
    FullScreenDialog::keyPressEvent(event);
}

void FileBrowser::keyReleaseEvent(QKeyEvent* event) {
    if (IsBackKey(event->key()) && !event->isAutoRepeat()) {
        GoUp();
        return;
    }
    FullScreenDialog::keyReleaseEvent(event);
}

FileBrowser* ChooseFile(shell::qt::DialogStack& stack, int mode, int titleStringId,
                        std::function<void(const std::string& path)> chosen,
                        const std::string& startFolder) {
    std::string folder = LastFolder();
    if (folder.empty() || !QFileInfo(QFile::decodeName(QByteArray::fromStdString(folder))).isDir())
        folder =
            startFolder.empty() ? QFile::encodeName(QDir::homePath()).toStdString() : startFolder;
    auto* browser =
        new FileBrowser(stack, mode, QString::fromUtf8(common::LoadString(titleStringId)), folder);
    browser->onFinished = [browser, chosen = std::move(chosen)](shell::qt::DialogResult result) {
        if (result == shell::qt::DialogResult::Ok && chosen)
            chosen(browser->chosenPath());
    };
    stack.Open(browser);
    return browser;
}

}  // namespace satwalk::browser::qt
