#!/usr/bin/env python3
"""Makes ten exam papers as PDF files with LibreOffice, in different layouts.

All that belongs to question k is of one colour, of hue 30 * k degrees; what belongs to none is
black. So a picture of the page tells which question each spot of ink is part of.

Usage: make_papers.py FOLDER
"""
import base64
import colorsys
import random
import struct
import subprocess
import sys
import tempfile
import zlib

WORDS = """the value of a triangle with sides find show that an equation has two solutions for
which number is larger give your answer in metres explain why graph below shows how speed changes
time calculate probability both balls are red volume cone write down next term sequence simplify
expression shop sells apples at each bus leaves every minutes what happens when water heated name
parts cell describe difference between mass and weight""".split()


def colour(question):
    if question == 0:
        return "#000000"
    red, green, blue = colorsys.hls_to_rgb((question % 12) / 12, 0.3, 1)
    return "#%02x%02x%02x" % tuple(round(255 * each) for each in (red, green, blue))


def picture(question, width, height):
    """A PNG file with a few thick lines, as base64."""
    ink = bytes(int(colour(question)[i:i + 2], 16) for i in (1, 3, 5))
    rows = b""
    for y in range(height):
        row = b"".join(ink if (x + y) % 40 < 4 or y in (0, 1, height - 2, height - 1) else
                       b"\xff\xff\xff" for x in range(width))
        rows += b"\0" + row

    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))

    png = (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0))
           + chunk(b"IDAT", zlib.compress(rows)) + chunk(b"IEND", b""))
    return base64.b64encode(png).decode()


class Paper:
    def __init__(self, seed, font="Liberation Serif", size=12, gap=0, line=100, justify=False,
                 header=None, footer=None, margin=2.0):
        self.random = random.Random(seed)
        self.font, self.size, self.line, self.justify = font, size, line, justify
        self.header, self.footer, self.margin = header, footer, margin
        self.gap = gap
        self.styles = {}
        self.body = []

    def style(self, question, indent=0.0, first=0.0, before=0.0, bold=False, font=None, size=None,
              centre=False):
        key = (question, indent, first, before, bold, font, size, centre)
        name = self.styles.setdefault(key, "S%d" % len(self.styles))
        return name

    def words(self, count):
        return " ".join(self.random.choice(WORDS) for _ in range(count))

    def text(self, question, text, **how):
        self.body.append('<text:p text:style-name="%s">%s</text:p>'
                         % (self.style(question, **how), text.replace("\t", "<text:tab/>")))

    def blank(self):
        self.text(0, "")

    def picture(self, question, width=6.0, height=3.0, **how):
        frame = ('<draw:frame draw:name="p%d" text:anchor-type="as-char" svg:width="%.1fcm" '
                 'svg:height="%.1fcm"><draw:image><office:binary-data>%s</office:binary-data>'
                 '</draw:image></draw:frame>' % (len(self.body), width, height,
                                                 picture(question, int(width * 40), int(height * 40))))
        self.text(question, frame, **how)

    def table(self, question, rows=3, columns=4):
        cell = ('<table:table-cell table:style-name="C%d" office:value-type="string">'
                '<text:p text:style-name="%s">%s</text:p></table:table-cell>')
        style = self.style(question)
        self.body.append('<table:table table:style-name="T"><table:table-column '
                         'table:number-columns-repeated="%d"/>' % columns)
        for _ in range(rows):
            self.body.append("<table:table-row>" + "".join(
                cell % (question, style, self.random.randint(10, 99)) for _ in range(columns))
                + "</table:table-row>")
        self.body.append("</table:table>")

    def document(self):
        styles = []
        for (question, indent, first, before, bold, font, size, centre), name in self.styles.items():
            styles.append(
                '<style:style style:name="%s" style:family="paragraph"><style:paragraph-properties '
                'fo:margin-left="%.2fcm" fo:text-indent="%.2fcm" fo:margin-top="%.2fcm" '
                'fo:line-height="%d%%" fo:text-align="%s" fo:orphans="2" fo:widows="2">'
                '<style:tab-stops><style:tab-stop style:position="%.2fcm"/></style:tab-stops>'
                '</style:paragraph-properties><style:text-properties style:font-name="%s" '
                'fo:font-family="%s" fo:font-size="%dpt" fo:color="%s" fo:font-weight="%s"/>'
                '</style:style>'
                % (name, indent, first, before, self.line,
                   "center" if centre else "justify" if self.justify else "start", -first or 1,
                   font or self.font, font or self.font, size or self.size, colour(question),
                   "bold" if bold else "normal"))
        styles += ['<style:style style:name="C%d" style:family="table-cell"><style:table-cell-'
                   'properties fo:border="0.8pt solid %s" fo:padding="0.1cm"/></style:style>'
                   % (question, colour(question)) for question in range(13)]
        styles.append('<style:style style:name="T" style:family="table"><style:table-properties '
                      'style:width="10cm" table:align="left"/></style:style>')

        def band(kind, text):
            if text is None:
                return ""
            number = '<text:page-number text:select-page="current"/>'
            return ('<style:%s><text:p text:style-name="H">%s</text:p></style:%s>'
                    % (kind, text.replace("\t", "<text:tab/>").replace("#", number), kind))

        def room(kind, text):
            return "" if text is None else (
                '<style:%s-style><style:header-footer-properties fo:min-height="1cm" '
                'fo:margin-bottom="0.5cm" fo:margin-top="0.5cm"/></style:%s-style>' % (kind, kind))

        return ('<?xml version="1.0" encoding="UTF-8"?><office:document '
                'xmlns:office="urn:oasis:names:tc:opendocument:xmlns:office:1.0" '
                'xmlns:style="urn:oasis:names:tc:opendocument:xmlns:style:1.0" '
                'xmlns:text="urn:oasis:names:tc:opendocument:xmlns:text:1.0" '
                'xmlns:table="urn:oasis:names:tc:opendocument:xmlns:table:1.0" '
                'xmlns:draw="urn:oasis:names:tc:opendocument:xmlns:drawing:1.0" '
                'xmlns:fo="urn:oasis:names:tc:opendocument:xmlns:xsl-fo-compatible:1.0" '
                'xmlns:svg="urn:oasis:names:tc:opendocument:xmlns:svg-compatible:1.0" '
                'office:version="1.2" office:mimetype="application/vnd.oasis.opendocument.text">'
                '<office:styles><style:style style:name="H" style:family="paragraph">'
                '<style:paragraph-properties><style:tab-stops><style:tab-stop style:position="17cm" '
                'style:type="right"/></style:tab-stops></style:paragraph-properties>'
                '<style:text-properties fo:font-size="9pt"/></style:style></office:styles>'
                '<office:automatic-styles><style:page-layout style:name="P">'
                '<style:page-layout-properties fo:page-width="21cm" fo:page-height="29.7cm" '
                'fo:margin="%.1fcm"/>%s%s</style:page-layout>%s</office:automatic-styles>'
                '<office:master-styles><style:master-page style:name="Standard" '
                'style:page-layout-name="P">%s%s</style:master-page></office:master-styles>'
                '<office:body><office:text>%s</office:text></office:body></office:document>'
                % (self.margin, room("header", self.header), room("footer", self.footer),
                   "".join(styles), band("header", self.header), band("footer", self.footer),
                   "".join(self.body)))


def plain():
    paper = Paper(1)
    for q in range(1, 13):
        paper.text(q, "%d. %s." % (q, paper.words(18 + q)))
        paper.blank()
    return paper


def hanging():
    paper = Paper(2, font="Liberation Sans", size=11)
    how = {"indent": 1.0}
    for q in range(1, 13):
        paper.text(q, "%d.\t%s?" % (q, paper.words(25)), indent=1.0, first=-1.0, before=0.25)
        for part in "abc"[:q % 4]:
            paper.text(q, "%s)\t%s" % (part, paper.words(9)), indent=2.0, first=-1.0)
        if q == 5:
            paper.picture(q, **how)
    return paper


def titled():
    paper = Paper(3, font="Liberation Sans", footer="\t#")
    paper.text(0, "Mathematics test", bold=True, size=18, centre=True)
    for q in range(1, 9):
        paper.text(q, "Question %d" % q, bold=True, before=0.6)
        paper.text(q, paper.words(30) + ".", before=0.1)
        if q % 3 == 0:
            paper.picture(q, centre=True, before=0.3)
        paper.text(q, paper.words(12) + "?", before=0.1)
    return paper


def tables():
    paper = Paper(4, header="Class 7b\tScience", footer="Spring\tPage #")
    for q in range(1, 10):
        paper.text(q, "%d. %s:" % (q, paper.words(14)), before=0.6)
        if q % 2:
            paper.table(q, rows=2 + q % 3)
        paper.text(q, paper.words(16) + ".")
        paper.blank()
    return paper


def narrow():
    paper = Paper(5, font="Liberation Serif", size=10, justify=True, header="Name:\tDate:")
    for q in range(1, 13):
        paper.text(q, "%d. %s." % (q, paper.words(40)), before=0.14)
        paper.text(q, paper.words(35) + ".", font="Liberation Sans", size=9)
    return paper


def brackets():
    paper = Paper(6, size=12, footer="\t#")
    for q in range(1, 11):
        paper.text(q, "%d) %s." % (q, paper.words(22)))
        for part in "ab":
            paper.blank()
            paper.text(q, "%s) %s?" % (part, paper.words(10)))
        paper.blank()
        paper.blank()
    return paper


def choices():
    paper = Paper(7, font="Liberation Sans", size=14, line=150)
    for q in range(1, 9):
        paper.text(q, "%d. %s?" % (q, paper.words(10)), before=0.5)
        for letter in "ABCD":
            paper.text(q, "%s  %s" % (letter, paper.words(3)), indent=1.2)
    return paper


def broken():
    paper = Paper(8, size=12, header="End of term examination\tForm 5", footer="Turn over\t# / 9")
    for q in range(1, 8):
        paper.text(q, "%d.\t%s." % (q, paper.words(50)), indent=0.9, first=-0.9, before=0.7)
        for part in range(1, 5):
            paper.text(q, "(%s)\t%s?" % ("ivxl"[part - 1], paper.words(28)), indent=1.9, first=-1.0,
                       before=0.2)
        if q in (2, 6):
            paper.picture(q, width=9, height=5, indent=0.9, before=0.3)
    return paper


def sections():
    paper = Paper(9, font="Liberation Sans", size=11, footer="\t#")
    paper.text(0, "Physics", bold=True, size=20)
    paper.text(0, "Answer all questions. " + paper.words(30) + ".", before=0.3)
    for q in range(1, 11):
        if q in (1, 4, 8):
            paper.text(0, "Section %s" % "ABC"[q // 4], bold=True, size=13, before=0.9)
        paper.text(q, "%d.\t%s?" % (q, paper.words(20)), indent=0.8, first=-0.8, before=0.6)
        if q % 4 == 1:
            paper.picture(q, width=5, height=2.5, indent=0.8)
        if q % 4 == 2:
            paper.text(q, "1)\t" + paper.words(6), indent=1.6, first=-0.8)
            paper.text(q, "2)\t" + paper.words(6), indent=1.6, first=-0.8)
            paper.text(q, "3)\t" + paper.words(6), indent=1.6, first=-0.8)
    return paper


def bare():
    paper = Paper(10, font="Liberation Serif", size=12, header="0580/12\tMarch", footer="#\t[Turn over")
    for q in range(1, 12):
        paper.text(q, "%d\t%s. [%d]" % (q, paper.words(24), q % 4 + 1), indent=0.9, first=-0.9,
                   before=1.0)
        if q % 3 == 0:
            paper.picture(q, indent=0.9, centre=True, before=0.2)
        if q % 3 == 1:
            paper.text(q, "(a)\t%s." % paper.words(14), indent=1.8, first=-0.9, before=0.5)
            paper.text(q, "(b)\t%s." % paper.words(14), indent=1.8, first=-0.9, before=0.5)
    return paper


def main(folder):
    makers = [plain, hanging, titled, tables, narrow, brackets, choices, broken, sections, bare]
    with tempfile.TemporaryDirectory() as profile:
        files = []
        for maker in makers:
            files.append("%s/%s.fodt" % (folder, maker.__name__))
            with open(files[-1], "w", encoding="utf-8") as file:
                file.write(maker().document())
        subprocess.run(["soffice", "--headless", "-env:UserInstallation=file://" + profile,
                        "--convert-to", "pdf", "--outdir", folder] + files,
                       check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)


if __name__ == "__main__":
    main(sys.argv[1])
