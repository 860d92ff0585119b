"""How well a picture stands out from what is behind it, as contrast of relative luminance (1 to 21)."""

LEAST = 3.0  # what a symbol needs
BARS = {"dark": (0x10, 0x10, 0x14), "light": (0xf6, 0xf6, 0xf8)}


def luminance(colour):
    linear = [each / 12.92 if each <= 0.04045 else ((each + 0.055) / 1.055) ** 2.4
              for each in (value / 255 for value in colour)]
    return 0.2126 * linear[0] + 0.7152 * linear[1] + 0.0722 * linear[2]


def contrast(one, other):
    low, high = sorted((luminance(one), luminance(other)))
    return (high + 0.05) / (low + 0.05)


def legible_share(argb, bar):
    """The share of a picture's pixels that stand out from `bar`; its bytes are alpha, red, green, blue."""
    pixels = [argb[at:at + 4] for at in range(0, len(argb), 4)]
    over = [[round(value * alpha / 255 + behind * (255 - alpha) / 255) for value, behind in zip(colour, bar)]
            for alpha, *colour in pixels]
    return sum(contrast(colour, bar) >= LEAST for colour in over) / len(over)
