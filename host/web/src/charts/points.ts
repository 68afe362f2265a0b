// Many points in few series: flat coordinates, and where each point comes from for its hover text.
import type { Satellite, Signal } from '../detail';

export class Points {
  private coordinates = new Float64Array(2048);
  private readonly sources: { satellite: Satellite; signal: Signal | null; first: number }[] = [];
  private rows = new Uint32Array(1024);
  count = 0;

  source(satellite: Satellite, signal: Signal | null): void {
    this.sources.push({ satellite, signal, first: this.count });
  }

  add(x: number, y: number, row: number): void {
    if (this.count === this.rows.length) {
      const coordinates = new Float64Array(4 * this.count);
      coordinates.set(this.coordinates);
      this.coordinates = coordinates;
      const rows = new Uint32Array(2 * this.count);
      rows.set(this.rows);
      this.rows = rows;
    }
    this.coordinates[2 * this.count] = x;
    this.coordinates[2 * this.count + 1] = y;
    this.rows[this.count++] = row;
  }

  data(): Float64Array {
    return this.coordinates.slice(0, 2 * this.count);
  }

  at(index: number): { satellite: Satellite; signal: Signal | null; row: number } {
    let k = this.sources.length - 1;
    while (k > 0 && this.sources[k].first > index) --k;
    return { ...this.sources[k], row: this.rows[index] };
  }

  /** As a scatter series in one colour. */
  series(name: string, color: string, size: number, extra: Record<string, unknown> = {}): object {
    return {
      type: 'scatter',
      name,
      data: this.data(),
      dimensions: ['x', 'y'],
      // The library draws no large series without points.
      large: this.count > 0,
      largeThreshold: 0,
      progressive: 0,
      symbolSize: size,
      itemStyle: { color, opacity: 0.8 },
      ...extra,
    };
  }
}
