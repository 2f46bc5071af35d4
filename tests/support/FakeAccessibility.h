/// Elements as a test sets them; what was asked of them is written down.
#pragma once

#include "platform/Accessibility.h"

#include <QStringList>

#include <functional>

namespace velorin {

class FakeElement final : public AccessibleElement {
public:
    /// What all handles of one element share.
    struct State {
        std::optional<QString> role = QStringLiteral("text");
        std::optional<QString> value = QString();
        std::optional<QString> selectedText = QString();
        std::optional<TextRange> range;
        bool isSettable = true;
        tl::expected<void, AccessibilityError> answer;
        std::vector<std::shared_ptr<FakeElement>> children;
        QStringList written;
        int textsRead = 0;
        std::vector<std::chrono::milliseconds> renewals;
    };

    FakeElement() : state(std::make_shared<State>()) {}
    explicit FakeElement(std::shared_ptr<State> shared) : state(std::move(shared)) {}

    std::shared_ptr<State> state;

    State* operator->() const { return state.get(); }

    std::optional<QString> role() override { return state->role; }
    std::optional<QString> value() override {
        ++state->textsRead;
        return state->value;
    }
    std::optional<QString> selectedText() override {
        ++state->textsRead;
        return state->selectedText;
    }
    std::optional<TextRange> selectedTextRange() override { return state->range; }
    bool isSelectedTextSettable() override { return state->isSettable; }
    tl::expected<void, AccessibilityError> replaceSelection(const QString& text) override {
        state->written.append(text);
        return state->answer;
    }
    std::vector<std::shared_ptr<AccessibleElement>> children() override {
        return {state->children.begin(), state->children.end()};
    }
    bool isSameAs(const AccessibleElement& other) const override {
        return dynamic_cast<const FakeElement&>(other).state == state;
    }
    std::shared_ptr<AccessibleElement> renewed(std::chrono::milliseconds budget) const override {
        state->renewals.push_back(budget);
        return std::make_shared<FakeElement>(state);
    }
};

class FakeAccessibility final : public Accessibility {
public:
    std::shared_ptr<FakeElement> focused;
    std::vector<qint64> processes;
    /// Called on the thread that asks, before it is answered.
    std::function<void()> onAsked = [] {};

    std::shared_ptr<AccessibleElement> focusedElement(qint64 process, std::chrono::milliseconds) override {
        processes.push_back(process);
        onAsked();
        return focused;
    }
};

} // namespace velorin
