'use strict';

const data = JSON.parse(document.getElementById('data').textContent);

// Elements. Texts become text nodes, so nothing in a file is ever read as HTML.
function fill(node, attributes, children) {
  for (const [name, value] of Object.entries(attributes)) if (value != null) node.setAttribute(name, value);
  node.append(...children.flat(Infinity).filter((child) => child != null));
  return node;
}
const html = (name, attributes = {}, ...children) => fill(document.createElement(name), attributes, children);
const svg = (name, attributes = {}, ...children) =>
  fill(document.createElementNS('http://www.w3.org/2000/svg', name), attributes, children);
const find = (id) => document.getElementById(id);
const put = (id, ...children) => find(id).replaceChildren(...children.flat(Infinity).filter((child) => child != null));

// Palettes that grow evenly lighter, also for those who do not tell red from green; the last one is for grey print.
const palettes = {
  viridis: ['#440154', '#472d7b', '#3b528b', '#2c728e', '#21918c', '#28ae80', '#5ec962', '#addc30', '#fde725'],
  cividis: ['#00224e', '#123570', '#3b496c', '#575d6d', '#707173', '#8a8678', '#a59c74', '#c3b369', '#e1cc55', '#fee838'],
  grey: ['#1a1a1a', '#f0f0f0'],
};

const channels = (colour) => [1, 3, 5].map((at) => parseInt(colour.slice(at, at + 2), 16));

/** The colour at `part`, 0 to 1, of a palette. */
function colourAt(palette, part) {
  const stops = palettes[palette];
  const at = Math.min(Math.max(part, 0), 1) * (stops.length - 1);
  const from = channels(stops[Math.floor(at)]), to = channels(stops[Math.ceil(at)]);
  return `rgb(${from.map((value, i) => Math.round(value + (to[i] - value) * (at % 1))).join(',')})`;
}

const group = (digits) => digits.replace(/\B(?=(\d{3})+$)/g, '\u202f');
/** A number with its thousands apart and so many digits behind the point. */
function format(value, digits = 0) {
  if (value == null) return '–';
  const [whole, part] = Math.abs(value).toFixed(digits).split('.');
  return (value < 0 && Number(value.toFixed(digits)) !== 0 ? '−' : '') + group(whole) + (part ? `.${part}` : '');
}
/** A number with about three digits. */
const short = (value) => format(value, Math.abs(value) >= 100 || value === 0 ? 0 : Math.abs(value) >= 10 ? 1 : Math.abs(value) >= 0.1 ? 2 : 4);
const plural = (count, one, many = `${one}s`) => `${format(count)} ${count === 1 ? one : many}`;
/** Counters of 100 ns in seconds. */
const seconds = (counter) => counter * 1e-7;

/** Round numbers from `low` to `high`, about `count` of them. */
function ticks(low, high, count) {
  const raw = (high - low) / count || 1;
  const power = 10 ** Math.floor(Math.log10(raw));
  const step = [1, 2, 5, 10].map((factor) => factor * power).find((size) => size >= raw * 0.999);
  const all = [];
  for (let i = Math.ceil(low / step - 1e-9); i * step <= high + step * 1e-9; ++i) all.push(Number((i * step).toPrecision(12)));
  return all;
}

/** The texts of round numbers, all with as many digits as their distance needs. */
function tickTexts(values) {
  const step = values.length > 1 ? values[1] - values[0] : Math.abs(values[0]) || 1;
  return values.map((value) => format(value, Math.max(0, -Math.floor(Math.log10(step) + 1e-9))));
}

// Cameras. A pixel is as wide as 1; rows lie closer, as hexagons do, and every other one is moved by half a pixel.
const kColumns = 20, kRows = 24, kRowStep = Math.sqrt(3) / 2, kRadius = 0.56;
const position = (column, row) => [column + (row % 2 ? 0 : 0.5), (kRows + 1 - row) * kRowStep];
const corners = [0, 1, 2, 3, 4, 5].map((i) => [Math.sin(i * Math.PI / 3), -Math.cos(i * Math.PI / 3)]);
const hexagon = ([x, y], radius = kRadius) =>
  `M${corners.map(([dx, dy]) => `${(x + radius * dx).toFixed(2)} ${(y + radius * dy).toFixed(2)}`).join('L')}Z`;

let allHexagons = '';
for (let column = 1; column <= kColumns; ++column) {
  for (let row = 1; row <= kRows; ++row) allHexagons += hexagon(position(column, row));
}

/** A camera without light. */
function cameraPicture(label) {
  const box = `0.3 ${(kRowStep - 0.8).toFixed(2)} ${kColumns + 0.9} ${((kRows - 1) * kRowStep + 1.6).toFixed(2)}`;
  return svg('svg', { viewBox: box, role: 'img', 'aria-label': label }, svg('path', { class: 'hexagons', d: allHexagons }));
}

/** A bar of a palette with its marks: `{ part, text }` each. */
function colourBar(palette, marks, label) {
  const steps = 64, width = 440;
  const bar = svg('svg', { viewBox: `0 0 ${width} 34`, role: 'img', 'aria-label': label });
  for (let i = 0; i < steps; ++i)
    bar.append(svg('rect', { x: 10 + i * 420 / steps, width: 420 / steps + 0.5, height: 14, fill: colourAt(palette, i / (steps - 1)) }));
  for (const { part, text } of marks) {
    const x = 10 + part * 420;
    bar.append(svg('path', { d: `M${x} 14v4`, stroke: 'currentColor' }),
               svg('text', { x, y: 30, 'text-anchor': part < 0.04 ? 'start' : part > 0.96 ? 'end' : 'middle' }, text));
  }
  return bar;
}
