package com.tavuro.common;

/** A point on a picture: two double coordinates. Immutable. */
public final class Point {
  private final double x;
  private final double y;

  /** The point (x, y). */
  public Point(double x, double y) {
    this.x = x;
    this.y = y;
  }

  /** The horizontal coordinate. */
  public double getX() {
    return x;
  }

  /** The vertical coordinate. */
  public double getY() {
    return y;
  }

  /** Equal when both coordinates are, as {@link Double#equals} compares them. */
  @Override
  public boolean equals(Object other) {
    return other instanceof Point
        && Double.compare(x, ((Point) other).x) == 0
        && Double.compare(y, ((Point) other).y) == 0;
  }

  @Override
  public int hashCode() {
    return Double.hashCode(x) * 31 + Double.hashCode(y);
  }

  @Override
  public String toString() {
    return "Point(" + x + ", " + y + ")";
  }
}
