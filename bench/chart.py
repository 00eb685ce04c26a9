"""Draws the charts of the benchmarks as SVG, with nothing but text: no library is needed, and two
runs give files that compare well.

A number of 0 or less has no place on a logarithmic scale and is left out.
"""
import math
from html import escape

# Told apart by people who do not see every colour, too.
COLOURS = ("#0b6bcb", "#7fb2e5", "#c4501b", "#7a5195", "#2e7d4f", "#b8860b", "#8a1538", "#5f6b76")
INK, FAINT, LINE = "#1f2933", "#5f6b76", "#dde2e7"


def _text(x, y, text, anchor="start", size=12, colour=INK, weight="normal"):
    return (f'<text x="{x:.1f}" y="{y:.1f}" text-anchor="{anchor}" font-size="{size}" '
            f'fill="{colour}" font-weight="{weight}">{escape(text)}</text>')


def _line(x1, y1, x2, y2, colour=LINE, width=1):
    return (f'<line x1="{x1:.1f}" y1="{y1:.1f}" x2="{x2:.1f}" y2="{y2:.1f}" stroke="{colour}" '
            f'stroke-width="{width}"/>')


def _document(width, height, title, parts):
    return "\n".join([
        f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width} {height}" width="{width}" '
        f'height="{height}" font-family="system-ui, sans-serif" role="img">',
        f"<title>{escape(title)}</title>",
        f'<rect width="{width}" height="{height}" fill="#ffffff"/>', *parts, "</svg>", ""])


def number_text(value):
    if value >= 1_000_000:
        return f"{value / 1_000_000:g}M"
    if value >= 1000:
        return f"{value / 1000:g}k"
    return f"{value:g}"


class Scale:
    """A logarithmic axis over whole decades or halves of them."""

    def __init__(self, values, start, end):
        low, high = math.log10(min(values)), math.log10(max(values))
        steps = [math.log10(step) for step in (1, 2, 5)]
        grid = sorted(decade + step for decade in range(math.floor(low) - 1, math.ceil(high) + 1)
                      for step in steps)
        self.low = max(mark for mark in grid if mark <= low + 1e-9)
        self.high = min(mark for mark in grid + [math.ceil(high) + 1] if mark >= high - 1e-9)
        if self.high - self.low < 0.3:
            self.high = self.low + 1
        self.start, self.end = start, end
        self.marks = [mark for mark in grid if self.low <= mark <= self.high]
        if len(self.marks) > 7:
            self.marks = [mark for mark in self.marks if mark == int(mark)]

    def at(self, value):
        share = (math.log10(value) - self.low) / (self.high - self.low)
        return self.start + share * (self.end - self.start)

    def ticks(self):
        return [(10 ** mark, number_text(round(10 ** mark, 6))) for mark in self.marks]


def dot_rows(title, subtitle, unit, series, rows):
    """One line a row with a dot for each of `series`, name -> colour.

    rows: (name, {series: value}). The legend stands above.
    """
    left, right, top, step = 190, 700, 96, 34
    bottom = top + step * len(rows)
    scale = Scale([value for _, values in rows for value in values.values() if value > 0],
                  left, right)
    parts = [_text(20, 30, title, size=16, weight="bold"), _text(20, 50, subtitle, colour=FAINT)]
    x = 20
    for name, colour in series.items():
        parts += [f'<circle cx="{x + 5}" cy="70" r="5" fill="{colour}"/>',
                  _text(x + 15, 74, name)]
        x += 34 + 8 * len(name)
    for value, label in scale.ticks():
        parts += [_line(scale.at(value), top - 8, scale.at(value), bottom),
                  _text(scale.at(value), bottom + 16, label, "middle", colour=FAINT)]
    parts.append(_text(right, bottom + 34, unit, "end", colour=FAINT))
    for number, (name, values) in enumerate(rows):
        y = top + step * number + step / 2
        parts += [_text(left - 14, y + 4, name, "end"), _line(left, y, right, y)]
        # The first series is drawn last, above the others.
        for key, colour in reversed(series.items()):
            if values.get(key, 0) > 0:
                parts.append(f'<circle cx="{scale.at(values[key]):.1f}" cy="{y:.1f}" r="6" '
                             f'fill="{colour}"><title>{escape(key)}: {values[key]:.3g} '
                             f'{escape(unit)}</title></circle>')
    return _document(right + 40, bottom + 50, title, parts)


def line_panels(title, subtitle, x_unit, panels):
    """Panels side by side, both axes logarithmic.

    panels: (name, {series: [(x, y), ...]}). All have the same series; the legend stands below.
    """
    width, height, left, top = 330, 260, 60, 90
    total = left + len(panels) * (width + 50)
    parts = [_text(20, 30, title, size=16, weight="bold"), _text(20, 50, subtitle, colour=FAINT)]
    series = []
    for number, (name, lines) in enumerate(panels):
        series += [key for key in lines if key not in series]
        start, bottom = left + number * (width + 50), top + height
        points = [(x, y) for line in lines.values() for x, y in line if x > 0 and y > 0]
        across = Scale([x for x, _ in points], start, start + width)
        upward = Scale([y for _, y in points], bottom, top)
        parts.append(_text(start, top - 12, name, weight="bold"))
        for value, label in across.ticks():
            parts += [_line(across.at(value), top, across.at(value), bottom),
                      _text(across.at(value), bottom + 16, label, "middle", 11, FAINT)]
        for value, label in upward.ticks():
            parts += [_line(start, upward.at(value), start + width, upward.at(value)),
                      _text(start - 6, upward.at(value) + 4, label, "end", 11, FAINT)]
        for key, line in lines.items():
            colour = COLOURS[series.index(key) % len(COLOURS)]
            places = [(across.at(x), upward.at(y)) for x, y in line if x > 0 and y > 0]
            path = " ".join(f"{x:.1f},{y:.1f}" for x, y in places)
            parts.append(f'<polyline points="{path}" fill="none" stroke="{colour}" '
                         f'stroke-width="2"/>')
            parts += [f'<circle cx="{x:.1f}" cy="{y:.1f}" r="3" fill="{colour}"/>'
                      for x, y in places]
        parts.append(_text(start + width, bottom + 34, x_unit, "end", 11, FAINT))
    x, y = 20, top + height + 60
    for number, key in enumerate(series):
        if x + 40 + 7 * len(key) > total:
            x, y = 20, y + 20
        parts += [f'<circle cx="{x + 5}" cy="{y - 4}" r="5" '
                  f'fill="{COLOURS[number % len(COLOURS)]}"/>', _text(x + 15, y, key)]
        x += 40 + 7 * len(key)
    return _document(total, y + 20, title, parts)
