// Prints a manual: Markdown and a style sheet in, PDF out. A tool of the build.
//
//     print_manual MANUAL.md STYLE.css FOOTER OUTPUT.pdf FONT.ttf...
//
// The same input makes the same bytes: only the fonts that are given are used, and the date is that
// of SOURCE_DATE_EPOCH. QT_HASH_SEED has to be 0, for the fonts are written in the order of a hash.

#include <QAbstractTextDocumentLayout>
#include <QBuffer>
#include <QDateTime>
#include <QFile>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QPainter>
#include <QPdfWriter>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextFrame>
#include <md4c-html.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <optional>

namespace {

constexpr QMarginsF kMargins(24, 22, 24, 24); ///< of the text on the A4 page, millimetres
constexpr double kFooterHeight = 12;          ///< of the bottom margin, millimetres
constexpr double kPageGap = 4;                ///< keeps letters off the next page, 1/96 inch
constexpr int kResolution = 600;              ///< of the layout, dots per inch

std::optional<QByteArray> contentsOf(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    return file.readAll();
}

QString htmlFromMarkdown(const QByteArray& markdown) {
    QByteArray html;
    const auto append = [](const MD_CHAR* text, MD_SIZE size, void* to) {
        static_cast<QByteArray*>(to)->append(text, static_cast<qsizetype>(size));
    };
    md_html(markdown.data(), static_cast<MD_SIZE>(markdown.size()), append, &html,
            MD_DIALECT_GITHUB, 0);
    // What the style sheet cannot say: columns of full width, room around lines of code, and the
    // wide space, which rich text takes for any other.
    constexpr auto kBox = R"(<table class="code" width="100%" cellpadding="6"><tr><td><pre>)";
    html.replace("<table>", R"(<table width="100%" cellpadding="5" cellspacing="0">)");
    html.replace("<pre><code>", kBox).replace("\n</code></pre>", "</pre></td></tr></table>");
    html.replace("\u3000", "&nbsp;&nbsp;");
    return QString::fromUtf8(html);
}

/// Moves each heading that has less than three lines below it on its page to the next one.
void keepHeadingsWithText(QTextDocument& document) {
    const auto pageOf = [&](const QTextBlock& block, int lineNumber) {
        const auto* layout = block.layout();
        const int line = std::min(lineNumber, layout->lineCount() - 1);
        const double inBlock = line >= 0 ? layout->lineAt(line).rect().bottom() : 0;
        const double top = document.documentLayout()->blockBoundingRect(block).top();
        return static_cast<int>((top + inBlock) / document.pageSize().height());
    };
    for (auto block = document.begin(); block.isValid(); block = block.next()) {
        auto text = block;
        while (text.isValid() && text.blockFormat().headingLevel() > 0)
            text = text.next();
        if (text == block || !text.isValid() || pageOf(block, 0) == pageOf(text, 2))
            continue;
        QTextBlockFormat onNextPage;
        onNextPage.setPageBreakPolicy(QTextFormat::PageBreak_AlwaysBefore);
        QTextCursor(block).mergeBlockFormat(onNextPage);
    }
}

void draw(const QTextDocument& document, QPdfWriter& writer, const QString& footer) {
    QPainter painter(&writer);
    const QRectF page(QPointF(0, 0), document.pageSize());
    const double footerHeight = kFooterHeight / 25.4 * kResolution;
    painter.setFont(QFont(document.defaultFont().family(), 8));
    for (int number = 0; number < document.pageCount(); ++number) {
        if (number > 0)
            writer.newPage();
        painter.setPen(QColor("#6b7a88"));
        const QRectF foot(0, page.height(), page.width(), footerHeight);
        painter.drawText(foot, Qt::AlignLeft | Qt::AlignBottom, footer);
        painter.drawText(foot, Qt::AlignRight | Qt::AlignBottom, QString::number(number + 1));
        painter.save();
        painter.translate(0, -number * page.height());
        QAbstractTextDocumentLayout::PaintContext context;
        context.clip = page.translated(0, number * page.height());
        painter.setClipRect(context.clip);
        document.documentLayout()->draw(&painter, context);
        painter.restore();
    }
}

QByteArray pdfFromDocument(QTextDocument& document, const QString& title, const QString& footer) {
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    {
        QPdfWriter writer(&buffer);
        writer.setTitle(title);
        writer.setCreator("Zelmora");
        writer.setResolution(kResolution);
        writer.setPageLayout(
            {QPageSize(QPageSize::A4), QPageLayout::Portrait, kMargins, QPageLayout::Millimeter});
        document.documentLayout()->setPaintDevice(&writer);
        document.setPageSize(QSizeF(writer.width(), writer.height()));
        auto pageFormat = document.rootFrame()->frameFormat();
        pageFormat.setTopMargin(kPageGap);
        pageFormat.setBottomMargin(kPageGap);
        document.rootFrame()->setFrameFormat(pageFormat);
        keepHeadingsWithText(document);
        draw(document, writer, footer);
    }
    return buffer.data();
}

/// The library writes the time of day.
void setDate(QByteArray& pdf) {
    const auto epoch = qEnvironmentVariable("SOURCE_DATE_EPOCH").toLongLong();
    const auto date = QDateTime::fromSecsSinceEpoch(epoch, Qt::UTC).toString("yyyyMMddHHmmss");
    const qsizetype at = pdf.indexOf("/CreationDate (D:");
    if (at >= 0)
        pdf.replace(at + 17, date.size(), date.toLatin1());
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("LC_ALL", "C.UTF-8");
    qputenv("TZ", "UTC");
    const QGuiApplication application(argc, argv);
    const auto arguments = QGuiApplication::arguments();
    if (arguments.size() < 6) {
        std::fputs("usage: print_manual MANUAL.md STYLE.css FOOTER OUTPUT.pdf FONT.ttf...\n",
                   stderr);
        return EXIT_FAILURE;
    }
    const auto markdown = contentsOf(arguments[1]);
    const auto style = contentsOf(arguments[2]);
    for (const auto& font : arguments.mid(5)) {
        if (QFontDatabase::addApplicationFont(font) < 0) {
            std::fprintf(stderr, "print_manual: no font: %s\n", qPrintable(font));
            return EXIT_FAILURE;
        }
    }
    if (!markdown || !style) {
        std::fputs("print_manual: the manual or its style sheet cannot be read\n", stderr);
        return EXIT_FAILURE;
    }

    QTextDocument document;
    document.setDocumentMargin(0);
    document.setDefaultFont(QFont("VL PGothic", 10));
    document.setDefaultStyleSheet(QString::fromUtf8(*style));
    document.setHtml(htmlFromMarkdown(*markdown));
    auto pdf = pdfFromDocument(document, document.firstBlock().text(), arguments[3]);
    setDate(pdf);

    QFile output(arguments[4]);
    const bool isWritten =
        output.open(QIODevice::WriteOnly) && output.write(pdf) == pdf.size() && output.flush();
    if (!isWritten)
        std::fprintf(stderr, "print_manual: cannot write %s\n", qPrintable(arguments[4]));
    return isWritten ? EXIT_SUCCESS : EXIT_FAILURE;
}
