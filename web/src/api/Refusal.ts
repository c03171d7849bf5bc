import type { Problem } from './Shapes.js';

// A request that the hub refused, or that did not reach it (status 0).
export class Refusal extends Error {
  constructor(readonly problem: Problem) {
    super(problem.detail);
  }
}

export function isProblem(value: unknown): value is Problem {
  return typeof value === 'object' && value !== null && 'detail' in value && 'status' in value;
}

export function unreached(detail: string): Refusal {
  return new Refusal({ title: 'not reached', status: 0, detail, where: null });
}
