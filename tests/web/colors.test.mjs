// The colours of systems and classes stay apart for those who see red and green alike, and on both backgrounds.
//
// Deuteranopia and protanopia as Machado, Oliveira and Fernandes 2009 simulate them (IEEE TVCG 15(6), severity
// 1), on linear sRGB; distances are those of CIE 1976 L*a*b* with white D65.
//
// usage: node --test colors.test.mjs, with the packages of host/web installed
import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import { createRequire } from 'node:module';
import { describe, it } from 'node:test';

const web = new URL('../../host/web/', import.meta.url);
const { transformSync } = createRequire(new URL('package.json', web))('esbuild');
const source = readFileSync(new URL('src/palette.ts', web), 'utf8');
const { code } = transformSync(source, { loader: 'ts', format: 'esm' });
const { SYSTEMS, SCALE } = await import(`data:text/javascript,${encodeURIComponent(code)}`);

const VISIONS = {
  normal: [[1, 0, 0], [0, 1, 0], [0, 0, 1]],
  deuteranopia: [[0.367322, 0.860646, -0.227968], [0.280085, 0.672501, 0.047413], [-0.01182, 0.04294, 0.968881]],
  protanopia: [[0.152286, 1.052583, -0.204868], [0.114503, 0.786281, 0.099216], [-0.003882, -0.048116, 1.051998]],
};
const BACKS = { light: '#ffffff', dark: '#182029' };

const multiply = (matrix, v) => matrix.map((row) => row[0] * v[0] + row[1] * v[1] + row[2] * v[2]);

function linear(color) {
  return [1, 3, 5].map((at) => {
    const c = Number.parseInt(color.slice(at, at + 2), 16) / 255;
    return c <= 0.04045 ? c / 12.92 : ((c + 0.055) / 1.055) ** 2.4;
  });
}

const TO_XYZ = [[0.4124564, 0.3575761, 0.1804375], [0.2126729, 0.7151522, 0.072175], [0.0193339, 0.119192, 0.9503041]];

function lab(color, vision) {
  const seen = multiply(vision, linear(color)).map((c) => Math.min(Math.max(c, 0), 1));
  const white = [0.95047, 1, 1.08883];
  const f = multiply(TO_XYZ, seen).map((c, k) => {
    const t = c / white[k];
    return t > 0.008856 ? Math.cbrt(t) : 7.787 * t + 16 / 116;
  });
  return [116 * f[1] - 16, 500 * (f[0] - f[1]), 200 * (f[1] - f[2])];
}

const distance = (a, b, vision) => Math.hypot(...lab(a, vision).map((x, k) => x - lab(b, vision)[k]));

const luminance = (color) => multiply(TO_XYZ, linear(color))[1];

/** WCAG 2.1. */
function contrast(a, b) {
  const [low, high] = [luminance(a), luminance(b)].sort((x, y) => x - y);
  return (high + 0.05) / (low + 0.05);
}

describe('colours', () => {
  it('measure what is known of them', () => {
    const { normal, deuteranopia } = VISIONS;
    assert.ok(Math.abs(lab('#ffffff', normal)[0] - 100) < 0.01);
    assert.ok(Math.abs(distance('#ff0000', '#00ff00', normal) - 170.6) < 0.5);
    // A red and a green that those with deuteranopia take for one another.
    assert.ok(distance('#b85a2a', '#7b7a1e', deuteranopia) < 12);
    assert.ok(distance('#b85a2a', '#7b7a1e', normal) > 35);
  });

  for (const [name, vision] of Object.entries(VISIONS)) {
    it(`of systems are at least 25 apart: ${name}`, () => {
      const letters = Object.keys(SYSTEMS);
      for (let i = 0; i < letters.length; ++i) {
        for (let k = 0; k < i; ++k) {
          const apart = distance(SYSTEMS[letters[i]], SYSTEMS[letters[k]], vision);
          assert.ok(apart >= 25, `${letters[i]} ${letters[k]}: ${apart.toFixed(1)}`);
        }
      }
    });

    it(`of classes rise in lightness and are at least 12 apart: ${name}`, () => {
      for (let k = 1; k < SCALE.length; ++k) {
        const [before, after] = [lab(SCALE[k - 1], vision), lab(SCALE[k], vision)];
        assert.ok(after[0] > before[0] + 5, `${SCALE[k]}: ${before[0].toFixed(1)} to ${after[0].toFixed(1)}`);
        assert.ok(distance(SCALE[k], SCALE[k - 1], vision) >= 12, SCALE[k]);
      }
    });
  }

  it('of systems stand out on light and dark', () => {
    for (const [letter, color] of Object.entries(SYSTEMS)) {
      for (const [name, back] of Object.entries(BACKS)) {
        assert.ok(contrast(color, back) >= 2.3, `${letter} on ${name}: ${contrast(color, back).toFixed(2)}`);
      }
    }
  });
});
