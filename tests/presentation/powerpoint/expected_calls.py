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


def slide(*calls):
    return ['get Application.ActiveWindow', 'get DocumentWindow.Selection',
            'get Selection.SlideRange', *calls]


def shapes(*calls):
    return slide('get SlideRange.Shapes', *calls)


def box(left, top, width, height):
    return shapes(f'call Shapes.AddTextbox I4:1 R4:{left} R4:{top} R4:{width} R4:{height}')


def written(words, *language):
    return ['get Shape.TextFrame', 'get TextFrame.TextRange', f'put TextRange.Text BSTR:{words}',
            *language]


def text(index, words, *language):
    return shapes(f'item Shapes.Item {index}', *written(words, *language))


SWISS = 'put TextRange.LanguageID I4:2055'
TOPIC = 'Algebra - İkiçıkarım{}second line'


def answer_of(number):
    return 'π ≈ 3,14 😀' if number == 1 else 'B'


def title(height, size, words):
    return slide('put SlideRange.Layout I4:11', 'get SlideRange.Shapes', 'get Shapes.Title',
                 'put Shape.Left R4:0', 'put Shape.Top R4:0', 'put Shape.Width R4:960',
                 f'put Shape.Height R4:{height}', *written(words, SWISS), 'get TextRange.Font',
                 f'put Font.Size R4:{size}')


def emphasis(index, size):
    return shapes(f'item Shapes.Item I4:{index}', 'get Shape.Fill', 'put FillFormat.Visible I4:-1',
                  'get FillFormat.ForeColor', 'put ColorFormat.ObjectThemeColor I4:14',
                  'get Shape.Line', 'put LineFormat.Visible I4:-1', 'get LineFormat.ForeColor',
                  'put ColorFormat.ObjectThemeColor I4:5', 'put LineFormat.Weight R4:1.5',
                  'get Shape.TextFrame', 'get TextFrame.TextRange', 'get TextRange.Font',
                  'put Font.Bold I4:-1', f'put Font.Size R4:{size}')


def wished(questions):
    """Fitted pictures, an answer after each question, titles, notes, 30 seconds."""
    yield from ['get Application.Presentations', 'call Presentations.Add I4:-1',
                'get Application.ActivePresentation', 'get Presentation.BuiltInDocumentProperties',
                'item DocumentProperties.Item BSTR:Title',
                'put DocumentProperty.Value BSTR:Spring: 2nd', 'put Application.Visible I4:-1']
    for page in range(1, 2 * questions + 1):
        number = (page + 1) // 2
        answer = f'Answer: {answer_of(number)}'
        name = f'Question {number}, {TOPIC}'
        yield from append(page)
        yield from title(70, 18, name.format('\r'))
        # Twice its size of 6 points, in the middle between 2 and 958.
        yield from shapes(f'call Shapes.AddPicture BSTR:{number}.jpg I4:0 I4:-1 R4:474 R4:70 '
                          'R4:12 R4:12')
        yield 'put Shape.AlternativeText BSTR:' + name.format('\n')
        if page % 2 == 0:
            # A line of 32 points and the margins, down to 538.
            yield from box(2, 483.6, 956, 54.4) + text('I4:3', answer, SWISS) + emphasis(3, 32)
        yield from slide('get SlideRange.NotesPage', 'get SlideRange.Shapes',
                         'get Shapes.Placeholders', 'item Placeholders.Item I4:2',
                         *written(answer, SWISS))
        yield from slide('get SlideRange.SlideShowTransition',
                         'put SlideShowTransition.AdvanceOnTime I4:-1',
                         'put SlideShowTransition.AdvanceTime R4:30')
    yield from append(2 * questions + 1)
    yield from title(24, 18, 'Answer Key')
    for number in range(1, questions + 1):
        yield from box(0, 20 * number, 100, 100)
        yield from text(f'I4:{number + 1}', f'{number}) {answer_of(number)}', SWISS)
    yield from slides('item Slides.Item I4:1', 'call Slide.Select')


def build(questions, topic, key, missing):
    yield from ['get Application.Presentations', 'call Presentations.Add I4:-1',
                'put Application.Visible I4:-1']
    for number in range(1, questions + 1):
        yield from append(number)
        if topic:
            yield from box(0, 0, 1000, 100) + text('I2:1', TOPIC.format('\r'))
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
            yield from text(f'I4:{line}', f'{answer}) {answer_of(answer)}')
            if answer % 25 == 0:
                line, slide = 0, slide + 1
                yield from append(slide)
    yield from slides('item Slides.Item I4:1', 'call Slide.Select')


for scenario in ((1, 0, 0, 0), (1, 1, 1, 0), (3, 0, 1, 0), (2, 1, 0, 0), (25, 1, 1, 0),
                 (26, 0, 1, 0), (3, 1, 1, 1), (3, 0, 1, 2), (100, 1, 1, 0), (2, 1, 1, 0, 'wished')):
    calls = wished(scenario[0]) if 'wished' in scenario else build(*scenario)
    path = Path(sys.argv[1], '_'.join(map(str, scenario)) + '.txt')
    path.write_bytes('\n'.join(calls).encode('utf-16-le'))
