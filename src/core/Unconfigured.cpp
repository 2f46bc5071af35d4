// The answers of a system on which neither AI nor the reading of selections has been set up.
#include "core/FinishingOperations.h"
#include "core/SelectionOperations.h"

namespace velorin {

QCoro::Task<std::optional<SelectionSnapshot>> NoSelection::snapshot(RunningApplication) {
    co_return std::nullopt;
}

QCoro::Task<bool> NoSelection::isStillSelected(SelectionSnapshot) { co_return false; }

// aiConfigured() is false, so the session never gets here.
QCoro::Task<> NoAI::transcribeWithProvider(QString, qint64) { Q_UNREACHABLE(); }
QCoro::Task<> NoAI::finishGenerate(QString, std::optional<QString>, qint64) { Q_UNREACHABLE(); }
QCoro::Task<> NoAI::finishEdit(SelectionSnapshot) { Q_UNREACHABLE(); }
QCoro::Task<> NoAI::finishPolish(QString, QString, qint64) { Q_UNREACHABLE(); }

} // namespace velorin
