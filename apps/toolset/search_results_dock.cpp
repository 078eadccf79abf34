#include "search_results_dock.h"

#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QVBoxLayout>

#include "qt_text.h"
#include "ts/comobject.h"
#include "ts/hostcomponents.h"

namespace toolset {

namespace {

// What plugins see of the dock: its operations, forwarded while the dock lives.
class SearchResultsComponent : public CTsComObjectRoot<ITsSearchResults> {
public:
    explicit SearchResultsComponent(SearchResultsDock* dock) : dock_(dock) {}
    void Detach() { dock_ = nullptr; }

    HRESULT Clear() override {
        if (!dock_) return E_FAIL;
        dock_->Clear();
        dock_->show();
        dock_->raise();
        return S_OK;
    }
    HRESULT AddResult(std::u16string_view resource, std::u16string_view location,
                      std::u16string_view text) override {
        if (!dock_) return E_FAIL;
        dock_->Add({std::u16string(resource), std::u16string(location), std::u16string(text)});
        return S_OK;
    }
    HRESULT SetStatus(std::u16string_view text) override {
        if (!dock_) return E_FAIL;
        dock_->SetStatus(ToQt(text));
        return S_OK;
    }

private:
    SearchResultsDock* dock_;
};

}  // namespace

SearchResultsDock::SearchResultsDock(QWidget* parent)
    : QDockWidget(QStringLiteral("Search Results"), parent),
      view_(new QListWidget),
      status_(new QLabel) {
    setObjectName(QStringLiteral("SearchResultsDock"));
    view_->setObjectName(QStringLiteral("SearchResults"));
    status_->setObjectName(QStringLiteral("SearchStatus"));
    auto* page = new QWidget;
    auto* layout = new QVBoxLayout(page);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(view_);
    layout->addWidget(status_);
    setWidget(page);
    // Double-click and Enter both activate a row.
    connect(view_, &QListWidget::itemActivated, this, [this](QListWidgetItem* item) {
        std::size_t row = std::size_t(view_->row(item));
        if (row < results_.size())
            emit placeRequested(ToQt(results_[row].resource), ToQt(results_[row].location));
    });

    auto component = CTsComObject<SearchResultsComponent>::Create(this);
    component_ = CTsComPtr<ITsSearchResults>(component.Get());
    TsRegisterHostComponent(kTsSearchResultsName, component_.Get());
}

SearchResultsDock::~SearchResultsDock() {
    TsRegisterHostComponent(kTsSearchResultsName, nullptr);
    // A plugin may still hold the component: it answers E_FAIL from now on.
    static_cast<SearchResultsComponent*>(component_.Get())->Detach();
}

void SearchResultsDock::Clear() {
    results_.clear();
    view_->clear();
    status_->clear();
}

void SearchResultsDock::Add(Result result) {
    view_->addItem(ToQt(result.text));
    results_.push_back(std::move(result));
}

void SearchResultsDock::SetStatus(const QString& text) {
    status_->setText(text);
}

QString SearchResultsDock::Status() const {
    return status_->text();
}

}  // namespace toolset
