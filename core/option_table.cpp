#include "core/option_table.h"

#include <cmath>

namespace larkspur {

namespace {
constexpr qsizetype usageWidth = 100;
constexpr qsizetype helpColumn = 24;

QString synopsis(const Option& option) {
    QString text = option.name;
    for (qsizetype i = 0; i < option.values.size(); ++i) {
        const bool optional = option.lastValueOptional && i == option.values.size() - 1;
        text += optional ? QStringLiteral(" [%1]").arg(option.values[i]) : u' ' + option.values[i];
    }
    return text;
}
} // namespace

OptionTable::OptionTable(QString program, QList<Option> options, QString operands)
    : m_program(std::move(program)), m_options(std::move(options)),
      m_operands(std::move(operands)) {}

const Option* OptionTable::find(const QString& name) const {
    for (const Option& option : m_options)
        if (option.name == name)
            return &option;
    return nullptr;
}

OptionTable::Parsed
OptionTable::parse(const QStringList& arguments,
                   const std::function<bool(const QString&)>& endsOptions) const {
    Parsed parsed;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        // -h is everywhere the short way to ask for --help.
        const QString argument = arguments[i] == u"-h" ? QStringLiteral("--help") : arguments[i];
        if (!argument.startsWith(u'-') || argument.size() == 1) {
            parsed.operands << argument;
            if (endsOptions && endsOptions(argument)) {
                parsed.rest = arguments.mid(i + 1);
                break;
            }
            continue;
        }
        if (argument == u"--help") {
            parsed.named << argument;
            parsed.help = true;
            continue;
        }
        const Option* option = find(argument);
        if (!option) {
            parsed.error = QStringLiteral("unknown option %1").arg(argument);
            return parsed;
        }
        parsed.named << argument;
        QStringList values = arguments.mid(i + 1, option->values.size());
        // An optional last value is left out when the option is last or another follows.
        if (option->lastValueOptional && values.size() == option->values.size() &&
            values.last().startsWith(QStringLiteral("--")))
            values.removeLast();
        const qsizetype needed = option->values.size() - (option->lastValueOptional ? 1 : 0);
        if (values.size() < needed) {
            parsed.error = QStringLiteral("%1 needs %2").arg(argument, option->values.join(u' '));
            return parsed;
        }
        i += values.size();
        if (const QString why = option->take(values); !why.isEmpty()) {
            parsed.error = argument + QStringLiteral(": ") + why;
            return parsed;
        }
    }
    return parsed;
}

QString OptionTable::usage() const {
    const QString head = QStringLiteral("usage: ") + m_program;
    const QString indent(head.size(), u' ');
    QStringList parts;
    for (const Option& option : m_options)
        parts << u'[' + synopsis(option) + u']' +
                     (option.repeatable ? QStringLiteral("...") : QString());
    parts << QStringLiteral("[--help]");
    if (!m_operands.isEmpty())
        parts << m_operands;
    QString text = head;
    qsizetype lineStart = 0;
    for (const QString& part : parts) {
        if (text.size() - lineStart + 1 + part.size() > usageWidth) {
            text += u'\n';
            lineStart = text.size();
            text += indent;
        }
        text += u' ' + part;
    }
    return text + u'\n';
}

QString OptionTable::help(const QString& about, const QString& after) const {
    QString text = usage() + u'\n' + about + u'\n';
    const QString indent(helpColumn, u' ');
    for (const Option& option : m_options) {
        QString line = QStringLiteral("  ") + synopsis(option);
        if (line.size() + 1 < helpColumn)
            line = line.leftJustified(helpColumn);
        else
            line += u'\n' + indent;
        text += line + QString(option.help).replace(u'\n', u'\n' + indent) + u'\n';
    }
    text += QStringLiteral("  --help").leftJustified(helpColumn) +
            QStringLiteral("show this and exit\n");
    return after.isEmpty() ? text : text + u'\n' + after;
}

Option flagOption(const char* name, bool& flag, const char* help) {
    return {name, {}, help, setFlag(flag)};
}

Option valueOption(const char* name, const char* value, TakeValues take, const char* help) {
    return {name, {value}, help, std::move(take)};
}

TakeValues setFlag(bool& flag) {
    return [&flag](const QStringList&) {
        flag = true;
        return QString();
    };
}

TakeValues takeText(QString& into, bool mayBeEmpty) {
    return [&into, mayBeEmpty](const QStringList& values) {
        if (!mayBeEmpty && values.at(0).trimmed().isEmpty())
            return QStringLiteral("wants a value, not an empty text");
        into = values.at(0);
        return QString();
    };
}

TakeValues takeSeconds(double& into, double low, double high, bool lowAllowed) {
    return [&into, low, high, lowAllowed](const QStringList& values) {
        bool ok = false;
        const double seconds = values.at(0).toDouble(&ok);
        if (!ok || !std::isfinite(seconds) || seconds < low || (seconds == low && !lowAllowed) ||
            seconds > high)
            return QStringLiteral("\"%1\" is not a number of seconds %2 %3 and up to %4")
                .arg(values.at(0), lowAllowed ? QStringLiteral("from") : QStringLiteral("above"))
                .arg(low)
                .arg(high);
        into = seconds;
        return QString();
    };
}

TakeValues takeWhole(int& into, int low, int high) {
    return [&into, low, high](const QStringList& values) {
        bool ok = false;
        const int n = values.at(0).toInt(&ok);
        if (!ok || n < low || n > high)
            return QStringLiteral("\"%1\" is not a whole number from %2 to %3")
                .arg(values.at(0))
                .arg(low)
                .arg(high);
        into = n;
        return QString();
    };
}

TakeValues takeMode(PmsMode& into) {
    return takeChoice(into, pmsModeNamed, QStringLiteral("HOTEL or VMAIL"));
}

TakeValues takeMode(std::optional<PmsMode>& into) {
    return takeChoice(into, pmsModeNamed, QStringLiteral("HOTEL or VMAIL"));
}

TakeValues takeProtocol(Protocol& into) {
    return takeChoice(into, protocolNamed, QStringLiteral("HYATT or HIS"));
}

TakeValues takeProtocol(std::optional<Protocol>& into) {
    return takeChoice(into, protocolNamed, QStringLiteral("HYATT or HIS"));
}

} // namespace larkspur
