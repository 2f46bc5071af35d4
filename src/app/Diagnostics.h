/// Lets the demonstration and the desktop tests ask a running program how long the stages of its dictations
/// took. Times only; on the session bus at /dev/orrin/velorin/diagnostics.
#pragma once

#include "platform/LatencyMarks.h"

#include <QObject>

namespace velorin {

class Diagnostics final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "dev.orrin.velorin.Diagnostics")
public:
    explicit Diagnostics(const LatencyMarks& marks);

public Q_SLOTS:
    /// A JSON list, oldest dictation first: an object each of milliseconds since the key went down, by
    /// stage; stages that were not reached are left out.
    QString Latencies() const;

private:
    const LatencyMarks& marks_;
};

} // namespace velorin
