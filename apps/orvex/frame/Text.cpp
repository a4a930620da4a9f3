#include "frame/Text.h"

#include <QLocale>

namespace Orvex::Cli {

namespace {

bool IsDirectionControl(char16_t c)
{
  return c == 0x200e || c == 0x200f || c == 0x061c || (c >= 0x202a && c <= 0x202e) ||
         (c >= 0x2066 && c <= 0x2069);
}

bool NeedsEscape(QChar c)
{
  switch (c.category()) {
  case QChar::Other_Control:
  case QChar::Other_Surrogate:
  case QChar::Separator_Line:
  case QChar::Separator_Paragraph:
    return !c.isSurrogate();
  default:
    return IsDirectionControl(c.unicode());
  }
}

QString Escaped(QChar c)
{
  if (c == u'\n')
    return QStringLiteral("\\n");
  if (c == u'\t')
    return QStringLiteral("\\t");
  return QStringLiteral("\\u%1").arg(c.unicode(), 4, 16, QChar(u'0'));
}

} // namespace

QString TextFromBytes(std::string_view bytes)
{
  return QString::fromUtf8(bytes.data(), static_cast<qsizetype>(bytes.size()));
}

QString TextFromBytes(const char* bytes)
{
  return bytes == nullptr ? QString() : TextFromBytes(std::string_view(bytes));
}

QString TerminalText(const QString& text)
{
  QString clean;
  clean.reserve(text.size());
  for (const QChar c : text)
    NeedsEscape(c) ? clean += Escaped(c) : clean += c;
  return clean;
}

QString Decimal(double value, int decimals)
{
  QString text = QLocale::c().toString(value, 'f', decimals);
  text.remove(u',');
  if (text.contains(u'.')) {
    while (text.endsWith(u'0'))
      text.chop(1);
    if (text.endsWith(u'.'))
      text.chop(1);
  }
  return text == QStringLiteral("-0") ? QStringLiteral("0") : text;
}

QString Number(double value)
{
  return QString::number(value == 0.0 ? 0.0 : value, 'g', 12);
}

} // namespace Orvex::Cli
