import org.apache.hadoop.conf.Configuration;
import org.apache.hadoop.hbase.HBaseConfiguration;
import org.apache.hadoop.hbase.TableName;
import org.apache.hadoop.hbase.client.Admin;
import org.apache.hadoop.hbase.client.Connection;
import org.apache.hadoop.hbase.client.ConnectionFactory;
import org.apache.hadoop.hbase.util.Bytes;

/** SplitTable ZKPORT TABLE KEY...: has an empty table begin a region at each key. (Regions with
 * rows can only be split again when they were compacted.) */
public class SplitTable {
  public static void main(String[] args) throws Exception {
    System.setProperty("hollowmere.hbase.zkport", args[0]);
    Configuration conf = HBaseConfiguration.create();
    TableName table = TableName.valueOf(args[1]);
    try (Connection connection = ConnectionFactory.createConnection(conf); Admin admin = connection.getAdmin()) {
      for (int i = 2; i < args.length; i++) {
        int regions = admin.getRegions(table).size();
        admin.split(table, Bytes.toBytes(args[i]));
        while (admin.getRegions(table).size() <= regions || !admin.isTableAvailable(table)) Thread.sleep(50);
      }
    }
  }
}
