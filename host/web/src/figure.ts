// A figure: heading, explanation, controls, one chart drawn when it comes into view, and its export.
import { button, el, save } from './dom';
import { type ECharts, init, type Option } from './echarts';
import { type Colors, colors, onTheme } from './theme';

export interface Drawing {
  option: Option;
  /** Points drawn, for screen readers and tests. */
  points: number;
  /** One sentence for those who cannot see the plot. */
  label: string;
  /** What is left out or held, in plain words; empty for nothing. */
  note?: string;
}

export interface FigureSpec {
  id: string;
  title: string;
  help: string;
  height: (width: number) => number;
  draw: (colors: Colors, width: number) => Drawing;
  controls?: HTMLElement[];
  wide?: boolean;
  zoom?: boolean;
}

const FONT = 'system-ui, "Segoe UI", "Helvetica Neue", Arial, sans-serif';

/** Zoom by Ctrl and wheel, or pinch; drag moves, except on touch screens where it scrolls the page. */
export function insideZoom(axis: 'xAxisIndex' | 'yAxisIndex', extra: Record<string, unknown> = {}): object {
  const touch = matchMedia('(pointer: coarse)').matches;
  return {
    type: 'inside',
    [axis]: [0],
    zoomOnMouseWheel: 'ctrl',
    moveOnMouseMove: !touch,
    moveOnMouseWheel: false,
    preventDefaultMouseMove: !touch,
    filterMode: 'none',
    ...extra,
  };
}

export function axisStyle(c: Colors): Record<string, unknown> {
  return {
    axisLine: { lineStyle: { color: c.line } },
    axisTick: { lineStyle: { color: c.line } },
    axisLabel: { color: c.soft, fontFamily: FONT },
    splitLine: { lineStyle: { color: c.line, opacity: 0.6 } },
    nameTextStyle: { color: c.soft, fontFamily: FONT },
  };
}

/** Times of GPS along the bottom: the hour, and the day where one begins. */
export function timeAxis(c: Colors, width: number): Record<string, unknown> {
  const style = axisStyle(c);
  return {
    type: 'time',
    ...style,
    splitNumber: width < 600 ? 4 : 10,
    axisLabel: {
      ...(style.axisLabel as object),
      hideOverlap: true,
      formatter: { year: '{MMM} {d}', month: '{MMM} {d}', day: '{MMM} {d}', hour: '{HH}:{mm}', minute: '{HH}:{mm}', second: '{HH}:{mm}:{ss}', millisecond: '{HH}:{mm}:{ss}' },
    },
  };
}

/** A legend as strong as what it names, whatever the opacity of the points. */
export function legendStyle(c: Colors): Record<string, unknown> {
  return { bottom: 0, textStyle: { color: c.soft }, itemStyle: { opacity: 1 }, inactiveColor: '#8b97a3', itemWidth: 14, itemHeight: 11, itemGap: 9 };
}

export class Figure {
  readonly element: HTMLElement;
  chart: ECharts | null = null;
  private readonly box = el('div', { class: 'chart', role: 'img' });
  private readonly note = el('p', { class: 'note' });
  private readonly spec: FigureSpec;

  constructor(spec: FigureSpec) {
    this.spec = spec;
    const heading = el('h3', { id: `${spec.id}-title` }, spec.title);
    const bar = el('div', { class: 'bar', role: 'group', 'aria-label': `${spec.title}: view and export` });
    for (const control of spec.controls ?? []) bar.append(control);
    bar.append(el('span', { class: 'space' }));
    if (spec.zoom !== false) {
      bar.append(
        button('+', () => this.zoom(0.5), { 'aria-label': `Zoom in: ${spec.title}`, title: 'Zoom in' }),
        button('\u2212', () => this.zoom(2), { 'aria-label': `Zoom out: ${spec.title}`, title: 'Zoom out' }),
        button('Reset', () => this.zoom(0), { 'aria-label': `Reset zoom: ${spec.title}` }),
      );
    }
    bar.append(
      button('PNG', () => this.savePng(), { 'aria-label': `Save as PNG: ${spec.title}` }),
      button('SVG', () => this.saveSvg(), { 'aria-label': `Save as SVG: ${spec.title}` }),
    );
    this.element = el(
      'figure',
      { id: spec.id, class: spec.wide ? 'card wide' : 'card', 'aria-labelledby': `${spec.id}-title` },
      el('figcaption', {}, heading, el('p', { class: 'help' }, spec.help)),
      bar,
      this.box,
      this.note,
    );
    const seen = new IntersectionObserver(
      (entries) => {
        if (entries.some((entry) => entry.isIntersecting)) this.show();
      },
      { rootMargin: '300px' },
    );
    seen.observe(this.element);
    new ResizeObserver(() => this.resize()).observe(this.box);
    onTheme(() => this.redraw());
  }

  /** Draws what is not drawn yet. */
  show(): void {
    if (this.chart !== null) return;
    this.box.style.height = `${this.spec.height(this.box.clientWidth)}px`;
    this.chart = init(this.box, null, { renderer: 'canvas', devicePixelRatio: Math.max(devicePixelRatio, 2) });
    this.redraw();
  }

  redraw(): void {
    if (this.chart === null) return;
    const drawing = this.drawing();
    this.chart.setOption(drawing.option, { notMerge: true });
    this.box.setAttribute('aria-label', drawing.label);
    this.element.dataset.points = String(drawing.points);
    this.note.textContent = drawing.note ?? '';
  }

  /** Draws new data and keeps the zoom. */
  update(): void {
    if (this.chart === null) return;
    const zooms = (this.chart.getOption().dataZoom ?? []) as { start: number; end: number }[];
    this.redraw();
    zooms.forEach(({ start, end }, dataZoomIndex) => {
      if (start > 0 || end < 100) this.chart!.dispatchAction({ type: 'dataZoom', dataZoomIndex, start, end });
    });
  }

  resize(): void {
    if (this.chart !== null && this.box.clientWidth !== this.chart.getWidth()) this.refit();
  }

  /**
   * Puts a still picture in the chart's place: paper takes neither what is painted over the next frames nor
   * all of several layers.
   */
  freeze(): void {
    const chart = this.chart;
    if (chart === null) return;
    chart.getZr().flush();
    (chart.getZr().painter as { refresh(all?: boolean): unknown }).refresh(true);
    const still = el('canvas', { class: 'still', width: 2 * chart.getWidth(), height: 2 * chart.getHeight() });
    const context = still.getContext('2d')!;
    for (const layer of this.box.querySelectorAll('canvas')) context.drawImage(layer, 0, 0, still.width, still.height);
    this.box.classList.add('frozen');
    this.box.after(still);
  }

  thaw(): void {
    this.box.classList.remove('frozen');
    this.element.querySelector('.still')?.remove();
    this.refit();
  }

  /** After a change that needs another height. */
  refit(): void {
    if (this.chart === null) return;
    const height = this.spec.height(this.box.clientWidth);
    this.box.style.height = `${height}px`;
    this.chart.resize({ width: this.box.clientWidth, height });
    this.redraw();
  }

  private drawing(): Drawing {
    const c = colors();
    const drawing = this.spec.draw(c, this.box.clientWidth);
    drawing.option = {
      animation: false,
      textStyle: { fontFamily: FONT, color: c.text },
      backgroundColor: 'transparent',
      ...drawing.option,
      tooltip: {
        trigger: 'item',
        confine: true,
        backgroundColor: c.back,
        borderColor: c.line,
        textStyle: { color: c.text, fontSize: 13 },
        ...(drawing.option.tooltip as object | undefined),
      },
    };
    return drawing;
  }

  /** @param factor of the shown range; 0 shows the starting range */
  private zoom(factor: number): void {
    this.show();
    const chart = this.chart;
    if (chart === null) return;
    if (factor === 0) {
      this.redraw();
      return;
    }
    const zooms = (chart.getOption().dataZoom ?? []) as { type: string; start: number; end: number }[];
    zooms.forEach((zoom, dataZoomIndex) => {
      if (zoom.type !== 'inside') return;
      const middle = (zoom.start + zoom.end) / 2;
      const half = Math.max(((zoom.end - zoom.start) / 2) * factor, 0.05);
      const start = Math.max(0, middle - half);
      chart.dispatchAction({ type: 'dataZoom', dataZoomIndex, start, end: Math.min(100, middle + half) });
    });
  }

  private savePng(): void {
    this.show();
    const data = this.chart!.getDataURL({ type: 'png', pixelRatio: 2, backgroundColor: colors().back });
    const text = atob(data.slice(data.indexOf(',') + 1));
    save(`${this.spec.id}.png`, 'image/png', Uint8Array.from(text, (c) => c.charCodeAt(0)));
  }

  private saveSvg(): void {
    this.show();
    save(`${this.spec.id}.svg`, 'image/svg+xml', this.svg());
  }

  /** The plot as shown, its zoom included. */
  svg(): string {
    const shown = this.chart!;
    const size = { width: shown.getWidth(), height: shown.getHeight() };
    const copy = init(null, null, { renderer: 'svg', ssr: true, ...size });
    copy.setOption({ ...this.drawing().option, backgroundColor: colors().back });
    const zooms = (shown.getOption().dataZoom ?? []) as { start: number; end: number }[];
    zooms.forEach(({ start, end }, dataZoomIndex) => {
      copy.dispatchAction({ type: 'dataZoom', dataZoomIndex, start, end });
    });
    const text = copy.renderToSVGString();
    copy.dispose();
    return text;
  }
}
