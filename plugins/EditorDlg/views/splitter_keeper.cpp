#include "views/splitter_keeper.h"

#include <QEvent>
#include <QSplitter>

#include "model/editor_layout.h"

namespace dlg {

namespace {

class SplitterKeeper : public QObject {
public:
    explicit SplitterKeeper(QSplitter& splitter) : QObject(&splitter), splitter_(splitter) {
        splitter.installEventFilter(this);
        connect(&splitter, &QSplitter::splitterMoved, this,
                [this](int position, int) { EditorLayout::Process().Remember(Name(), position); });
    }

    bool eventFilter(QObject*, QEvent* event) override {
        // Sizes given before the first show would be scaled to the first geometry; after it,
        // the position is the user's in pixels.
        if (event->type() == QEvent::Show && !applied_) {
            applied_ = true;
            if (auto position = EditorLayout::Process().Position(Name())) {
                QList<int> sizes = splitter_.sizes();
                int total = 0;
                for (int size : sizes) total += size;
                if (sizes.size() == 2 && total > 0 && *position <= total)
                    splitter_.setSizes({*position, total - *position});
            }
        }
        return false;
    }

private:
    std::u16string Name() const { return splitter_.objectName().toStdU16String(); }

    QSplitter& splitter_;
    bool applied_ = false;
};

}  // namespace

void KeepSplitterPosition(QSplitter& splitter) {
    new SplitterKeeper(splitter);
}

}  // namespace dlg
