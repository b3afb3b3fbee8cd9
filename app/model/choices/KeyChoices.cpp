#include "app/model/choices/KeyChoices.h"

#include "app/desktop/HostWords.h"
#include "app/desktop/Store.h"
#include "app/model/choices/FixedKeys.h"

#include <QCoreApplication>
#include <QKeySequence>

namespace qirn {

namespace {

const QString kToolPrefix = QStringLiteral("tool.");

QString words(const char* source) {
    return hostWords(QCoreApplication::translate("KeyChoices", source));
}

int withoutModifiers(int key) {
    return key & ~static_cast<int>(Qt::KeyboardModifierMask);
}

bool isLetter(int key) {
    return key >= Qt::Key_A && key <= Qt::Key_Z;
}

/// A key of the store's text; nothing where it is none.
std::optional<int> keyFrom(const Json& text) {
    if (!text.is_string()) return std::nullopt;
    const QString written = QString::fromStdString(text.get<std::string>());
    if (written.isEmpty()) return 0;
    const auto sequence = QKeySequence::fromString(written, QKeySequence::PortableText);
    if (sequence.count() != 1 || sequence[0].key() == Qt::Key_unknown) return std::nullopt;
    return sequence[0].toCombined();
}

} // namespace

KeyChoices KeyChoices::load(const Store& store) {
    KeyChoices choices;
    const Json* record = store.json(QLatin1String(storeKey));
    if (!record || !record->is_object()) return choices;
    for (const auto& [written, text] : record->items()) {
        const QString name = QString::fromStdString(written);
        const std::optional<int> chosen = keyFrom(text);
        const bool usable =
            chosen && refusalOf(name, *chosen).isEmpty() && !choices.isTakenFrom(name, *chosen);
        if (usable) choices.choose(name, *chosen);
    }
    return choices;
}

void KeyChoices::save(Store& store) const {
    OrderedJson record = OrderedJson::object();
    for (const auto& [name, chosen] : chosen_)
        record[name.toStdString()] = QKeySequence(chosen).toString(QKeySequence::PortableText).toStdString();
    store.set(QLatin1String(storeKey), record);
}

std::optional<int> KeyChoices::of(const QString& name) const {
    const auto found = chosen_.find(name);
    return found == chosen_.end() ? std::nullopt : std::optional(found->second);
}

bool KeyChoices::isTakenFrom(const QString& name, int key) const {
    if (key == 0) return false;
    for (const auto& [other, chosen] : chosen_) {
        if (chosen == key && other != name) return true;
    }
    return false;
}

void KeyChoices::choose(const QString& name, int key) {
    if (key != 0) std::erase_if(chosen_, [key](const auto& other) { return other.second == key; });
    chosen_[name] = key;
}

void KeyChoices::forget(const QString& name) {
    chosen_.erase(name);
}

void KeyChoices::forgetWhere(const std::function<bool(const QString& name)>& isGone) {
    std::erase_if(chosen_, [&](const auto& choice) { return isGone(choice.first); });
}

QString keyName(Tool tool) {
    return kToolPrefix + QLatin1String(rowOf(tool).id);
}

QChar keyOf(Tool tool, const KeyChoices& choices) {
    const QString name = keyName(tool);
    if (const auto chosen = choices.of(name)) return QChar(static_cast<char16_t>(*chosen));
    const char own = rowOf(tool).key;
    return choices.isTakenFrom(name, own) ? QChar() : QLatin1Char(own);
}

std::optional<Tool> toolWithKey(QChar letter, const KeyChoices& choices) {
    const QChar upper = letter.toUpper();
    for (const ToolRow& row : kTools) {
        if (!upper.isNull() && keyOf(row.tool, choices) == upper) return row.tool;
    }
    return std::nullopt;
}

QString titleWithKey(Tool tool, const KeyChoices& choices) {
    return withKey(toolTitle(tool), keyOf(tool, choices).unicode());
}

QString refusalOf(const QString& name, int key) {
    if (key == 0) return {};
    if (const FixedKey* fixed = fixedKey(key))
        return words(QT_TRANSLATE_NOOP("KeyChoices", "%1 stays the key of \"%2\"."))
            .arg(keyText(key), whatItDoes(*fixed));
    if (isPlainKey(key)) return {};
    if (name.startsWith(kToolPrefix))
        return words(QT_TRANSLATE_NOOP("KeyChoices", "The key of a tool is one letter or digit."));
    const int plain = withoutModifiers(key);
    const int held = key ^ plain;
    const bool isFunctionKey = plain >= Qt::Key_F1 && plain <= Qt::Key_F35;
    if ((held & ~Qt::SHIFT) == Qt::ALT && isLetter(plain))
        return words(QT_TRANSLATE_NOOP("KeyChoices", "⌥ and a letter open the menus."));
    if (isFunctionKey || (held & (Qt::CTRL | Qt::ALT | Qt::META))) return {};
    return words(QT_TRANSLATE_NOOP(
        "KeyChoices",
        "The key of a command is a letter, a digit, a function key, or any key with ⌘, ⌥ or ⌃ held."));
}

bool isPlainKey(int key) {
    return isLetter(key) || (key >= Qt::Key_0 && key <= Qt::Key_9);
}

QString keyText(int key) {
    return key == 0 ? QString() : leftToRight(QKeySequence(key).toString(QKeySequence::NativeText));
}

QString withKey(const QString& words, int key) {
    return key == 0 ? words : QStringLiteral("%1 (%2)").arg(words, keyText(key));
}

} // namespace qirn
