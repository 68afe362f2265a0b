// The parts of the plotting library that the page uses.
import { BarChart, CustomChart, LineChart, ScatterChart } from 'echarts/charts';
import { DataZoomComponent, GridComponent, LegendComponent, TooltipComponent } from 'echarts/components';
import { init, use } from 'echarts/core';
import type { ECharts, EChartsCoreOption } from 'echarts/core';
import { CanvasRenderer, SVGRenderer } from 'echarts/renderers';

use([
  BarChart,
  CustomChart,
  LineChart,
  ScatterChart,
  DataZoomComponent,
  GridComponent,
  LegendComponent,
  TooltipComponent,
  CanvasRenderer,
  SVGRenderer,
]);

export { init };
export type { ECharts };
/** Options stay loose: the charts are few and tested in a browser. */
export type Option = EChartsCoreOption;
