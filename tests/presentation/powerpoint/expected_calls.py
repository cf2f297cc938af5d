#!/usr/bin/env python3
"""Writes the calls that a build has to make, as fake_powerpoint logs them, one file for each
scenario: NAME.txt in the folder given. Written from the description of the build's steps and the
object model's operations, not from the program."""
import sys
from pathlib import Path

TRUE, FALSE, BLANK, HORIZONTAL, TOP_LEFT = -1, 0, 12, 1, 0


class Build:
    def __init__(self):
        self.lines = []
        self.slides = 0

    def say(self, how, member, *arguments):
        self.lines.append(f'{how} {member}({", ".join(arguments)})')

    def presentation_slides(self):
        self.say('get', 'Application.ActivePresentation')
        self.say('get', 'Presentation.Slides')

    def append(self):
        self.presentation_slides()
        self.say('get', 'Slides.Count')
        self.presentation_slides()
        self.slides += 1
        self.say('call', 'Slides.Add', f'I4:{self.slides}', f'I4:{BLANK}')
        self.say('call', 'Slide.Select')

    def shapes(self):
        self.say('get', 'Application.ActiveWindow')
        self.say('get', 'DocumentWindow.Selection')
        self.say('get', 'Selection.SlideRange')
        self.say('get', 'SlideRange.Shapes')

    def shape(self, index):
        self.shapes()
        self.say('item', 'Shapes.Item', f'I4:{index}')

    def box(self, *place):
        self.shapes()
        self.say('call', 'Shapes.AddTextbox', f'I4:{HORIZONTAL}', *(f'R4:{n}' for n in place))

    def text(self, index, words):
        self.shape(index)
        self.say('get', 'Shape.TextFrame')
        self.say('get', 'TextFrame.TextRange')
        self.say('put', 'TextRange.Text', f'BSTR:{words}')

    def question(self, number, topic, missing):
        self.append()
        t = 1 if topic else 0
        if topic:
            self.box(0, 0, 1000, 100)
            self.text(1, 'Algebra - İkiçıkarım<CR>second line')
        self.box(0, 40 * t, 100, 100)
        if missing:
            return False
        self.shapes()
        self.say('call', 'Shapes.AddPicture', f'BSTR:{number}.jpg', f'I4:{FALSE}', f'I4:{TRUE}',
                 'R4:2', f'R4:{50 + 20 * t}', 'R4:-1', 'R4:-1')
        self.say('put', 'Shape.AlternativeText', f'BSTR:Question {number}')
        self.text(t + 1, f'#{number}')
        for scale in ('ScaleHeight', 'ScaleWidth'):
            self.shape(t + 2)
            self.say('call', f'Shape.{scale}', 'R4:1', f'I4:{TRUE}', f'I4:{TOP_LEFT}')
        return True

    def key(self, questions):
        self.append()
        self.box(0, 0, 300, 100)
        self.text(1, 'Answer Key')
        line = 1
        for answer in range(1, questions + 1):
            line += 1
            self.box(0, 20 * (line - 1), 100, 100)
            self.text(line, f'{answer}) {"π ≈ 3,14 😀" if answer == 1 else "B"}')
            if answer % 25 == 0:
                self.append()
                line = 0

    def run(self, questions, topic, key, missing):
        self.say('get', 'Application.Presentations')
        self.say('call', 'Presentations.Add', f'I4:{TRUE}')
        self.say('put', 'Application.Visible', f'I4:{TRUE}')
        for number in range(1, questions + 1):
            if not self.question(number, topic, number == missing):
                return
        if key:
            self.key(questions)
        self.presentation_slides()
        self.say('item', 'Slides.Item', 'I4:1')
        self.say('call', 'Slide.Select')


for questions, topic, key, missing in [(1, 0, 0, 0), (1, 1, 1, 0), (3, 0, 1, 0), (2, 1, 0, 0),
                                       (25, 1, 1, 0), (26, 0, 1, 0), (3, 1, 1, 1), (3, 0, 1, 2),
                                       (100, 1, 1, 0)]:
    build = Build()
    build.run(questions, topic, key, missing)
    path = Path(sys.argv[1], f'{questions}_{topic}_{key}_{missing}.txt')
    path.write_text('\n'.join(build.lines) + '\n', encoding='utf-8')
