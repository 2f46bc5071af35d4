/// What is asked of the Secret Service, call by call. Each blocks until the service answers or the
/// cancellable is cancelled, never asks the user for anything, and may run on any one thread.
#pragma once

#include <QByteArray>
#include <QString>

#include <memory>
#include <optional>

using GCancellable = struct _GCancellable;

namespace velorin::SecretCalls {

struct Unref {
    void operator()(void* object) const;
};
using Cancellable = std::unique_ptr<GCancellable, Unref>;

[[nodiscard]] Cancellable newCancellable();
void cancel(GCancellable* cancellable);

/// Nothing when there is no item, or it is locked.
[[nodiscard]] std::optional<QByteArray> read(const QString& service, const QString& account,
                                             GCancellable* cancellable);
bool add(const QString& service, const QString& account, const QByteArray& secret, GCancellable* cancellable);
bool remove(const QString& service, const QString& account, GCancellable* cancellable);

/// Whether somebody has the service's name already; starts nobody.
[[nodiscard]] bool isRunning(GCancellable* cancellable);

enum class Presence { answers, absent, silent };
[[nodiscard]] Presence look(GCancellable* cancellable);

} // namespace velorin::SecretCalls
