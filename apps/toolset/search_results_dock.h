#pragma once

#include <QDockWidget>
#include <string>
#include <vector>

#include "ts/comptr.h"
#include "ts/searchresults.h"

class QLabel;
class QListWidget;

namespace toolset {

// "Search Results": what an editor's search found (Find Links), one row per result with the
// editor's text, and the search's status line below. The window serves it to plugins as the host
// component "SearchResultsWindow" while it lives. Activating a row (double-click or Enter) asks
// for its place to be shown.
class SearchResultsDock : public QDockWidget {
    Q_OBJECT
public:
    explicit SearchResultsDock(QWidget* parent = nullptr);
    ~SearchResultsDock() override;

    struct Result {
        std::u16string resource;
        std::u16string location;  // a marker location text ("StartLine=18")
        std::u16string text;
    };
    void Clear();
    void Add(Result result);
    void SetStatus(const QString& text);

    const std::vector<Result>& Results() const { return results_; }
    QString Status() const;
    QListWidget& View() const { return *view_; }

signals:
    // A row was activated: show `location` in `resource`'s editor.
    void placeRequested(const QString& resource, const QString& location);

private:
    std::vector<Result> results_;
    QListWidget* view_;
    QLabel* status_;
    CTsComPtr<ITsSearchResults> component_;
};

}  // namespace toolset
