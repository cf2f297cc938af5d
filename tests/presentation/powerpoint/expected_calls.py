#!/usr/bin/env python3
"""Writes the calls that a build has to make, as fake_powerpoint logs them, one file for each
scenario: NAME.txt in the folder given. Written from the description of the build's steps and the
object model's operations, not from the program."""
import sys
from pathlib import Path


def slides(*calls):
    return ['get Application.ActivePresentation', 'get Presentation.Slides', *calls]


def append(number):
    return [*slides('get Slides.Count'),
            *slides(f'call Slides.Add I4:{number} I4:12', 'call Slide.Select')]


def shapes(*calls):
    return ['get Application.ActiveWindow', 'get DocumentWindow.Selection',
            'get Selection.SlideRange', 'get SlideRange.Shapes', *calls]


def box(left, top, width, height):
    return shapes(f'call Shapes.AddTextbox I4:1 R4:{left} R4:{top} R4:{width} R4:{height}')


def text(index, words):
    return shapes(f'item Shapes.Item {index}', 'get Shape.TextFrame', 'get TextFrame.TextRange',
                  f'put TextRange.Text BSTR:{words}')


def build(questions, topic, key, missing):
    yield from ['get Application.Presentations', 'call Presentations.Add I4:-1',
                'put Application.Visible I4:-1']
    for number in range(1, questions + 1):
        yield from append(number)
        if topic:
            yield from box(0, 0, 1000, 100) + text('I2:1', 'Algebra - İkiçıkarım\rsecond line')
        yield from box(0, 40 * topic, 100, 100)
        if number == missing:
            return
        yield from shapes(f'call Shapes.AddPicture BSTR:{number}.jpg I4:0 I4:-1 R4:2 '
                          f'R4:{50 + 20 * topic} R4:-1 R4:-1')
        yield f'put Shape.AlternativeText BSTR:Question {number}'
        yield from text(f'I4:{topic + 1}', f'#{number}')
        for scale in 'ScaleHeight', 'ScaleWidth':
            yield from shapes(f'item Shapes.Item I4:{topic + 2}',
                              f'call Shape.{scale} R4:1 I4:-1 I4:0')
    if key:
        yield from append(questions + 1)
        yield from box(0, 0, 300, 100) + text('I2:1', 'Answer Key')
        line, slide = 1, questions + 1
        for answer in range(1, questions + 1):
            line += 1
            yield from box(0, 20 * (line - 1), 100, 100)
            yield from text(f'I4:{line}', f'{answer}) {"π ≈ 3,14 😀" if answer == 1 else "B"}')
            if answer % 25 == 0:
                line, slide = 0, slide + 1
                yield from append(slide)
    yield from slides('item Slides.Item I4:1', 'call Slide.Select')


for scenario in ((1, 0, 0, 0), (1, 1, 1, 0), (3, 0, 1, 0), (2, 1, 0, 0), (25, 1, 1, 0),
                 (26, 0, 1, 0), (3, 1, 1, 1), (3, 0, 1, 2), (100, 1, 1, 0)):
    path = Path(sys.argv[1], '_'.join(map(str, scenario)) + '.txt')
    path.write_bytes('\n'.join(build(*scenario)).encode('utf-16-le'))
