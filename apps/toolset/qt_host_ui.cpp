#include "qt_host_ui.h"

#include <QCursor>
#include <QDialog>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QVBoxLayout>

#include "command_text.h"
#include "qt_text.h"
#include "ts/text.h"

namespace toolset {

namespace {

QMessageBox::Icon IconOf(std::uint32_t style) {
    switch (style & kTsMessageBoxIcon) {
        case MB_ICONERROR:
            return QMessageBox::Critical;
        case MB_ICONWARNING:
            return QMessageBox::Warning;
        case MB_ICONQUESTION:
            return QMessageBox::Question;
        case MB_ICONINFORMATION:
            return QMessageBox::Information;
        default:
            return QMessageBox::NoIcon;
    }
}

// The buttons of a style, in order, with the answer each gives.
std::vector<std::pair<QMessageBox::StandardButton, int>> ButtonsOf(std::uint32_t style) {
    switch (style & kTsMessageBoxButtons) {
        case MB_OKCANCEL:
            return {{QMessageBox::Ok, IDOK}, {QMessageBox::Cancel, IDCANCEL}};
        case MB_YESNOCANCEL:
            return {{QMessageBox::Yes, IDYES},
                    {QMessageBox::No, IDNO},
                    {QMessageBox::Cancel, IDCANCEL}};
        case MB_YESNO:
            return {{QMessageBox::Yes, IDYES}, {QMessageBox::No, IDNO}};
        default:
            return {{QMessageBox::Ok, IDOK}};
    }
}

bool EqualsIgnoringCase(std::u16string_view a, std::u16string_view b) {
    return QString::compare(ToQt(a), ToQt(b), Qt::CaseInsensitive) == 0;
}

// The filters editors name by purpose ("PlotFilter"), and the resource types each offers.
const std::vector<std::u16string_view>* NamedFilter(std::u16string_view name) {
    static const std::pair<std::u16string_view, std::vector<std::u16string_view>> kFilters[] = {
        {u"PlotFilter", {u"plo"}},     {u"ScriptFilter", {u"nss"}},
        {u"AreaFilter", {u"are"}},     {u"CutsceneFilter", {u"cut"}},
        {u"StageFilter", {u"stg"}},    {u"ConversationFilter", {u"dlg"}},
        {u"CreatureFilter", {u"utc"}}, {u"TextureFilter", {u"tga", u"dds", u"png"}},
    };
    for (const auto& [filter, types] : kFilters)
        if (EqualsIgnoringCase(filter, name)) return &types;
    return nullptr;
}

}  // namespace

std::vector<std::u16string> ResourcesMatching(const std::vector<ts::ResourceInfo>& resources,
                                              std::u16string_view filter) {
    std::vector<std::u16string_view> types;
    for (std::size_t start = 0; start <= filter.size();) {
        std::size_t end = std::min(filter.find(u';', start), filter.size());
        std::u16string_view type = filter.substr(start, end - start);
        if (type.starts_with(u"*.")) type.remove_prefix(2);
        if (const std::vector<std::u16string_view>* named = NamedFilter(type))
            types.insert(types.end(), named->begin(), named->end());
        else if (!type.empty() && type != u"*")
            types.push_back(type);
        start = end + 1;
    }
    std::vector<std::u16string> names;
    for (const auto& info : resources) {
        bool wanted = types.empty();
        for (auto type : types) wanted = wanted || EqualsIgnoringCase(type, info.type);
        if (wanted) names.push_back(info.name + u"." + info.type);
    }
    return names;
}

QtHostUi::QtHostUi(QWidget* parent, ResourceLister resources, LogWriter log, ErrorSink errors)
    : parent_(parent),
      resources_(std::move(resources)),
      log_(std::move(log)),
      errors_(std::move(errors)),
      previous_(ts::SetHostUi(this)) {}

QtHostUi::~QtHostUi() {
    ts::SetHostUi(previous_);
}

void QtHostUi::AnswerOnTerminal(std::FILE* out) {
    terminal_ = ts::MakeConsoleHostUi(out);
}

int QtHostUi::MessageBox(std::u16string_view text, std::u16string_view caption,
                         std::uint32_t style) {
    if (terminal_) return terminal_->MessageBox(text, caption, style);
    QMessageBox box(IconOf(style),
                    caption.empty() ? QStringLiteral("Mistreach Toolset") : ToQt(caption),
                    ToQt(text), QMessageBox::NoButton, parent_);
    auto buttons = ButtonsOf(style);
    std::size_t defaultIndex = (style & kTsMessageBoxDefault) == MB_DEFBUTTON2   ? 1
                               : (style & kTsMessageBoxDefault) == MB_DEFBUTTON3 ? 2
                                                                                 : 0;
    if (defaultIndex >= buttons.size()) defaultIndex = 0;
    for (std::size_t i = 0; i < buttons.size(); ++i) {
        QPushButton* button = box.addButton(buttons[i].first);
        if (i == defaultIndex) box.setDefaultButton(button);
    }
    box.setEscapeButton(box.button(buttons.back().first));
    auto answer = static_cast<QMessageBox::StandardButton>(box.exec());
    for (const auto& [button, id] : buttons)
        if (button == answer) return id;
    return buttons.back().second;
}

bool QtHostUi::PickResource(std::u16string_view title, std::u16string_view filter,
                            std::u16string& chosen) {
    if (terminal_) return false;
    std::vector<std::u16string> names =
        ResourcesMatching(resources_ ? resources_() : std::vector<ts::ResourceInfo>{}, filter);
    QDialog dialog(parent_);
    dialog.setWindowTitle(title.empty() ? QStringLiteral("Choose a Resource") : ToQt(title));
    auto* search = new QLineEdit(&dialog);
    search->setPlaceholderText(QStringLiteral("Filter"));
    auto* list = new QListWidget(&dialog);
    for (const auto& name : names) list->addItem(ToQt(name));
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, &dialog);
    auto* layout = new QVBoxLayout(&dialog);
    layout->addWidget(search);
    layout->addWidget(list);
    layout->addWidget(buttons);
    QObject::connect(search, &QLineEdit::textChanged, list, [list](const QString& text) {
        for (int i = 0; i < list->count(); ++i)
            list->item(i)->setHidden(!list->item(i)->text().contains(text, Qt::CaseInsensitive));
    });
    QObject::connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    QObject::connect(list, &QListWidget::itemActivated, &dialog, &QDialog::accept);
    if (list->count() > 0) list->setCurrentRow(0);
    if (dialog.exec() != QDialog::Accepted || !list->currentItem()) return false;
    chosen = list->currentItem()->text().toStdU16String();
    return true;
}

std::uint32_t QtHostUi::PopupMenu(const std::vector<TsPopupMenuItem>& items) {
    if (terminal_) return 0;
    QMenu menu(parent_);
    for (const TsPopupMenuItem& item : items) {
        if (item.name.empty()) {
            menu.addSeparator();
            continue;
        }
        QAction* action = menu.addAction(ToQt(CommandText(item.name)));
        action->setData(item.id);
        action->setEnabled(item.state & kTsCommandEnabled);
        action->setCheckable(item.state & kTsCommandChecked);
        action->setChecked(item.state & kTsCommandChecked);
    }
    QAction* chosen = menu.exec(QCursor::pos());
    return chosen ? chosen->data().toUInt() : 0;
}

void QtHostUi::LogOutput(std::u16string_view text) {
    if (log_) log_(ToQt(text));
}

void QtHostUi::ReplaceErrors(std::u16string_view resource,
                             const std::vector<ts::ErrorEntry>& errors) {
    if (errors_) errors_(resource, errors);
}

}  // namespace toolset
